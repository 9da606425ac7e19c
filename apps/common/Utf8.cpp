#include "apps/common/Utf8.h"

#include <shellapi.h>

#include <memory>

namespace apps {

std::string toUtf8(const CString& text) {
    const int length = text.GetLength();
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), 0);
    ::WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

CString fromUtf8(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    CString wide;
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.GetBufferSetLength(length), length);
    return wide;
}

std::vector<std::string> commandLineArguments() {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(CString(words.get()[i])));
    return arguments;
}

}  // namespace apps
