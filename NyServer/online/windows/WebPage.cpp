#include "NyServer/online/WebPage.h"

#include <afxwin.h>

#include <QoWaitCursor.h>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/detail/UniqueHandle.h"
#include "NyServer/online/ServiceAddress.h"
// After windows.h.
#include <wininet.h>

namespace {

// Sessions and opened addresses.
using UniqueInternetHandle = NySe::UniqueHandle<HINTERNET, ::InternetCloseHandle>;

constexpr wchar_t kAgent[] = L"quillmark";
constexpr DWORD kResponseCharacters = 1000;

enum class Outcome { done, failed, readFailed };

UniqueInternetHandle openUrl(const UniqueInternetHandle& session, const CString& url, DWORD flags) {
    return UniqueInternetHandle(::InternetOpenUrlW(session.get(), url, nullptr, 0, flags, 0));
}

// Reads once on purpose: responses are short.
Outcome readAvailable(const UniqueInternetHandle& url, CString& text) {
    DWORD available = 0;
    if (!::InternetQueryDataAvailable(url.get(), &available, 0, 0)) return Outcome::failed;
    std::vector<char> bytes(static_cast<size_t>(available) + 1);
    DWORD count = 0;
    if (!::InternetReadFile(url.get(), bytes.data(), available, &count)) return Outcome::readFailed;
    bytes[count] = '\0';
    text = CString(bytes.data());
    return Outcome::done;
}

// Bypasses the configured proxy. The session ends with the page.
Outcome readPage(const CString& address, CString& text) {
    const UniqueInternetHandle session(
        ::InternetOpenW(kAgent, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0));
    if (!session) return Outcome::failed;
    const UniqueInternetHandle url = openUrl(session, address, INTERNET_FLAG_EXISTING_CONNECT);
    return url ? readAvailable(url, text) : Outcome::failed;
}

void showReadError() {
    // A text that fills the buffer may have no terminator.
    wchar_t response[kResponseCharacters + 1] = L"";
    DWORD error = 0;
    DWORD length = kResponseCharacters;
    ::InternetGetLastResponseInfoW(&error, response, &length);
    CString text;
    text.Format(L"InternetReadFile return: %s", response);
    ::AfxMessageBox(text, MB_ICONERROR);
}

bool downloadPage(const CString& address, CString& text) {
    const Outcome outcome = readPage(address, text);
    if (outcome == Outcome::readFailed) showReadError();
    return outcome == Outcome::done;
}

}  // namespace

bool fetchPage(const WebPage& page, FetchMode mode, CString& text) {
    const QoWaitCursor waiting;
    const UniqueInternetHandle session(
        ::InternetOpenW(kAgent, INTERNET_OPEN_TYPE_PRECONFIG, L"", L"", 0));
    if (!session) return false;
    const CString address = mode == FetchMode::reachability ? page.url : productionAddress();
    const UniqueInternetHandle opened =
        openUrl(session, address, INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE);
    if (!opened) return false;
    if (mode == FetchMode::reachability) return true;
    CString downloaded;
    if (!downloadPage(page.url, downloaded)) return false;
    text += downloaded;
    return true;
}
