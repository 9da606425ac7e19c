// The requests about the server itself: its information and its administration.
#include <algorithm>
#include <string>

#include "NyServer/client/ClientExchange.h"
#include "NyServer/client/ServerInformation.h"

CString serverinformation::labelledLine(const CString& label, const CString& value) {
    constexpr int kLabelWidth = 30;
    const CString padding(_T(' '), std::max(kLabelWidth - label.GetLength(), 0));
    return label + padding + _T("\t: ") + value;
}

long NySeClientApp::getCurrentTime() {
    return request(NySe::actionGetCurrentTime) ? receiveScalar<LONG>(0) : 0;
}

CString NySeClientApp::getMachineIdentifiant() {
    CString identity;
    if (request(NySe::actionGetMachineIdentifiant)) receiveString(identity);
    return identity;
}

void NySeClientApp::getServerInformation(CStringArray& report) {
    using serverinformation::labelledLine;
    const CString time = serverinformation::timeText(getCurrentTime());
    const CString port(std::to_string(getPort()).c_str());
    const CString rule(_T('#'), 52);

    report.RemoveAll();
    report.Add(rule);
    report.Add(_T("\t\tCOLLABORATIVE SERVER INFORMATION"));
    report.Add(rule);
    report.Add(_T(" "));
    report.Add(labelledLine(_T("ADDRESS"), getStrAddress()));
    report.Add(labelledLine(_T("PORT"), port));
    report.Add(labelledLine(_T("CURRENT TIME"), time));
    report.Add(labelledLine(_T("MACHINE ID"), getMachineIdentifiant()));
    report.Add(labelledLine(_T("HOSTNAME"), getHostName()));
    report.Add(_T(""));
}

void NySeClientApp::shutDownServer() {
    request(NySe::actionShutDownServer);
}

void NySeClientApp::verifyCoherancy() {
    request(NySe::actionVerifyCoherancy);
}

CString NySeClientApp::getEventListFromEventViewer(int value) {
    CString events;
    if (request(NySe::actionGetEventListFromEventViewer, value)) receiveString(events);
    return events;
}
