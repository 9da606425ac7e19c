// The requests about connections.
#include "NyServer/client/ClientExchange.h"

long NySeClientApp::openConnection(const CString& name) {
    return request(NySe::actionOpenConnection, name) ? receiveScalar<LONG>(-1) : -1;
}

void NySeClientApp::closeConnection(long id) {
    request(NySe::actionCloseConnection, id);
}

void NySeClientApp::isOpenConnectionBy(long id, NySeUserPtrArray& users) {
    if (request(NySe::actionIsOpenConnectionBy, id)) receiveTable(users);
}

void NySeClientApp::getConnection(NySeConnectionArray& connections) {
    if (request(NySe::actionGetConnection)) receiveTable(connections);
}

void NySeClientApp::sendConnectionData(int first, int second, CObject& object) {
    request(NySe::actionSendConnectionData, first, second, object);
}
