// Fetches pages with libcurl, as the library does with WinINet on Windows.
#include "NyServer/online/WebPage.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <string>

#include "NyServer/base/port/Port.h"
#include "NyServer/online/posix/PageTimes.h"
#include "NyServer/online/ServiceAddress.h"

namespace {

constexpr long kRedirects = 10;

// Keeps the first bytes that arrive and ends the transfer: responses are short, and only what the
// first look finds counts.
struct FirstBytes {
    char bytes[CURL_MAX_WRITE_SIZE + 1] = "";
    bool isOpened = false;

    static size_t take(char* data, size_t, size_t count, void* self) noexcept {
        auto& first = *static_cast<FirstBytes*>(self);
        std::copy_n(data, std::min<size_t>(count, CURL_MAX_WRITE_SIZE), first.bytes);
        first.isOpened = true;
        return CURL_WRITEFUNC_ERROR;
    }
};

// One page. An option that libcurl refuses makes it fail.
class Transfer {
  public:
    explicit Transfer(const CString& url) {
        const std::string address = port::toUtf8(url, static_cast<size_t>(url.GetLength()));
        set(CURLOPT_URL, address.c_str());
        set(CURLOPT_USERAGENT, "quillmark");
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_WRITEFUNCTION, &FirstBytes::take);
        setRedirects(address);
        setTimes();
    }

    void bypassProxy() { set(CURLOPT_PROXY, ""); }

    // Returns whether the page was opened, whatever its status, and its first bytes.
    bool open(FirstBytes& first) {
        set(CURLOPT_WRITEDATA, &first);
        return m_isReady && (::curl_easy_perform(m_session.get()) == CURLE_OK || first.isOpened);
    }

  private:
    static CURL* makeSession() {
        static const CURLcode started = ::curl_global_init(CURL_GLOBAL_DEFAULT);
        return started == CURLE_OK ? ::curl_easy_init() : nullptr;
    }

    template <class Value>
    void set(CURLoption option, Value value) {
        m_isReady = m_isReady && ::curl_easy_setopt(m_session.get(), option, value) == CURLE_OK;
    }

    // No other schemes, and no way back from an encrypted page.
    void setRedirects(const std::string& address) {
        const bool isEncrypted =
            CString(address.substr(0, 6).c_str()).CompareNoCase(_T("https:")) == 0;
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_REDIR_PROTOCOLS_STR, isEncrypted ? "https" : "http,https");
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, kRedirects);
    }

    void setTimes() {
        set(CURLOPT_CONNECTTIMEOUT, pageTimes.connect);
        set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        set(CURLOPT_LOW_SPEED_TIME, pageTimes.silence);
        set(CURLOPT_TIMEOUT, pageTimes.total);
    }

    const std::unique_ptr<CURL, decltype(&::curl_easy_cleanup)> m_session{makeSession(),
                                                                          &::curl_easy_cleanup};
    bool m_isReady = m_session != nullptr;
};

bool isReachable(const CString& address) {
    FirstBytes ignored;
    return Transfer(address).open(ignored);
}

// Bypasses the configured proxy.
bool downloadPage(const CString& address, CString& text) {
    Transfer transfer(address);
    transfer.bypassProxy();
    FirstBytes first;
    if (!transfer.open(first)) return false;
    text += CString(first.bytes);
    return true;
}

}  // namespace

bool fetchPage(const WebPage& page, FetchMode mode, CString& text) {
    if (mode == FetchMode::reachability) return isReachable(page.url);
    return isReachable(productionAddress()) && downloadPage(page.url, text);
}
