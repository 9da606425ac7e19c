#include "NyServer/online/NyFctWebService.h"

#include <string>

#include "NyServer/detail/ExceptionBoundary.h"
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
    return answer.IsEmpty() ? CString() : elementText(answer, _T("VERSION"));
}

}  // namespace

bool pingWebServer() {
    return NySe::resultOr(false, [] {
        const WebPage page{
            serviceAddress(settings.type, *settings.customUrl) + _T("_Utilities/Ping.aspx"),
            _T("nyWebServerPing.xml")};
        CString text;
        return fetchPage(page, FetchMode::reachability, text);
    });
}

CString getOnlineVersionFromSoftwareID(long softwareId) {
    return NySe::resultOr(CString(), [softwareId] {
        const WebPage page{serviceAddress(settings.type, *settings.customUrl) +
                               _T("_Utilities/Version.aspx?sid=") +
                               CString(std::to_string(softwareId).c_str()),
                           _T("nyOnlineVersion.xml")};
        CString answer;
        return fetchPage(page, FetchMode::download, answer) ? versionIn(answer) : CString();
    });
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

void Util::setStrTempFolderPath(const CString& path) {
    NySe::succeeds([&] { settings.tempFolder = path; });  // out of memory: the old path stays
}

}  // namespace NyFctWebService
