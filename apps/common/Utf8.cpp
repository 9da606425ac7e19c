#include "apps/common/Utf8.h"

#include "NyServer/base/port/Port.h"

namespace apps {

std::string toUtf8(const CString& text) {
    return port::toUtf8(text, static_cast<std::size_t>(text.GetLength()));
}

CString fromUtf8(const std::string& text) {
    const auto wide = port::fromUtf8(text.data(), text.size());
    return CString(wide.data(), static_cast<int>(wide.size()));
}

}  // namespace apps
