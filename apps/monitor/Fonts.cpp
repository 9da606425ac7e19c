#include "apps/monitor/Fonts.h"

namespace apps::monitor {

UniqueFont makeWindowFont(int dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    ::SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0,
                                 static_cast<UINT>(dpi));
    return UniqueFont(::CreateFontIndirectW(&metrics.lfMessageFont));
}

int textHeight(HFONT font) {
    const HDC screen = ::GetDC(nullptr);
    const HGDIOBJ before = ::SelectObject(screen, font);
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(screen, &metrics);
    ::SelectObject(screen, before);
    ::ReleaseDC(nullptr, screen);
    return static_cast<int>(metrics.tmHeight);
}

}  // namespace apps::monitor
