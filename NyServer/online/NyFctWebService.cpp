#include "NyServer/online/NyFctWebService.h"

#include "NyServer/online/ElementText.h"
#include "NyServer/online/ServiceAddress.h"
#include "NyServer/online/WebPage.h"

namespace NyFctWebService {
namespace {

const CString kNoCustomUrl;

struct Settings {
    ServerUrlType type = serverUrlProduction;
    const CString* customUrl = &kNoCustomUrl;
    CString tempFolder;
};
Settings settings;

CString versionIn(const CString& answer) {
    return answer.IsEmpty() ? CString() : elementText(answer, L"VERSION");
}

}  // namespace

bool pingWebServer() try {
    const WebPage page{serviceAddress(settings.type, *settings.customUrl) + L"_Utilities/Ping.aspx",
                       L"nyWebServerPing.xml"};
    CString text;
    return fetchPage(page, FetchMode::reachability, text);
} catch (...) {
    return false;
}

CString getOnlineVersionFromSoftwareID(long softwareId) try {
    WebPage page{{}, L"nyOnlineVersion.xml"};
    page.url.Format(L"%s%s%ld", serviceAddress(settings.type, *settings.customUrl).GetString(),
                    L"_Utilities/Version.aspx?sid=", softwareId);
    CString answer;
    return fetchPage(page, FetchMode::download, answer) ? versionIn(answer) : CString();
} catch (...) {
    return {};
}

ServerUrlType getServerUrlType() {
    return settings.type;
}

void connectToTestBase(bool test) {
    settings.type = test ? serverUrlTest : serverUrlProduction;
    settings.customUrl = &kNoCustomUrl;
}

void setCustomServerUrl(const CString& url) {
    settings.customUrl = &url;
    settings.type = serverUrlCustom;
}

void Util::setStrTempFolderPath(const CString& path) try {
    settings.tempFolder = path;
} catch (...) {
    // No memory: the old path stays.
    return;
}

}  // namespace NyFctWebService
