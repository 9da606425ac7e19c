#include "apps/monitor/Layout.h"

#include <algorithm>

namespace apps::monitor {

namespace {

// At 96 dots per inch.
constexpr int kMargin = 8;
constexpr int kGap = 6;
constexpr int kTitleGap = 3;
constexpr int kButtonWidth = 76;
constexpr int kFilterLabelWidth = 40;
constexpr int kFilterWidth = 170;
constexpr int kTextPadding =
    10;  // above and below the text of a button and of the filter, together
constexpr int kSmallestList = 110;
constexpr int kSmallestWidth =
    2 * kMargin + kButtonCount * (kButtonWidth + kGap) + kFilterLabelWidth + kFilterWidth;

// One window's lengths in pixels.
class Measures {
  public:
    explicit Measures(const LayoutInput& input) : m_input(input) {}

    int px(int length) const { return scaled(length, m_input.dpi); }
    int left() const { return px(kMargin); }
    int right() const { return m_input.width - px(kMargin); }
    int bottom() const { return m_input.height - px(kGap); }
    int text() const { return m_input.textHeight; }
    int control() const { return text() + px(kTextPadding); }
    int barBottom() const { return px(kMargin) + control(); }
    int title() const { return text() + px(kTitleGap); }
    // The lists and the log have the same height.
    int listsHeight() const {
        const int available = bottom() - barBottom() - 2 * px(kGap) - 2 * title();
        return available / 2;
    }

  private:
    const LayoutInput& m_input;
};

RECT at(int left, int top, int width, int height) {
    return {left, top, left + width, top + height};
}

void layOutBar(const Measures& measures, Layout& layout) {
    const int top = measures.px(kMargin);
    int left = measures.left();
    for (RECT& button : layout.buttons) {
        button = at(left, top, measures.px(kButtonWidth), measures.control());
        left = button.right + measures.px(kGap);
    }
    const int filterLeft = measures.right() - measures.px(kFilterWidth);
    layout.filter = at(filterLeft, top, measures.px(kFilterWidth), measures.control());
    layout.filterLabel = at(filterLeft - measures.px(kFilterLabelWidth),
                            top + (measures.control() - measures.text()) / 2,
                            measures.px(kFilterLabelWidth), measures.text());
}

// The list of locks has the longest texts and is the widest.
void layOutLists(const Measures& measures, Layout& layout) {
    constexpr std::array kShares = {29, 27, 44};
    const int available = measures.right() - measures.left() - 2 * measures.px(kGap);
    const int top = measures.barBottom() + measures.px(kGap);
    int left = measures.left();
    for (size_t i = 0; i < layout.lists.size(); ++i) {
        const bool isLast = i + 1 == layout.lists.size();
        const int width = isLast ? measures.right() - left : available * kShares[i] / 100;
        layout.titles[i] = at(left, top, width, measures.text());
        layout.lists[i] = at(left, top + measures.title(), width, measures.listsHeight());
        left += width + measures.px(kGap);
    }
}

void layOutLog(const Measures& measures, Layout& layout) {
    const int width = measures.right() - measures.left();
    const int top = static_cast<int>(layout.lists[0].bottom) + measures.px(kGap);
    const int logTop = top + measures.title();
    layout.logTitle = at(measures.left(), top, width, measures.text());
    layout.log = at(measures.left(), logTop, width, measures.bottom() - logTop);
}

}  // namespace

int scaled(int length, int dpi) {
    return ::MulDiv(length, dpi, USER_DEFAULT_SCREEN_DPI);
}

Layout layOut(const LayoutInput& input) {
    const Measures measures(input);
    Layout layout{};
    layOutBar(measures, layout);
    layOutLists(measures, layout);
    layOutLog(measures, layout);
    return layout;
}

RECT within(RECT area, const RECT& bounds) {
    ::OffsetRect(&area, static_cast<int>(std::min(0L, bounds.right - area.right)),
                 static_cast<int>(std::min(0L, bounds.bottom - area.bottom)));
    ::OffsetRect(&area, static_cast<int>(std::max(0L, bounds.left - area.left)),
                 static_cast<int>(std::max(0L, bounds.top - area.top)));
    area.right = std::min(area.right, bounds.right);
    area.bottom = std::min(area.bottom, bounds.bottom);
    return area;
}

void placeWindow(const CWnd& window, const RECT& area) {
    ::MoveWindow(window.GetSafeHwnd(), area.left, area.top, area.right - area.left,
                 area.bottom - area.top, TRUE);
}

SIZE smallestClient(int dpi, int textHeight) {
    const LayoutInput input{0, 0, dpi, textHeight};
    const Measures measures(input);
    const int height = measures.barBottom() + 3 * measures.px(kGap) + 2 * measures.title() +
                       2 * measures.px(kSmallestList);
    return {measures.px(kSmallestWidth), height};
}

}  // namespace apps::monitor
