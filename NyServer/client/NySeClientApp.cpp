// The connection, the transport and the session calls. The requests are in one source per family.
#include "NyServer/client/NySeClientApp.h"

#include "NyServer/client/ClientExchange.h"
#include "NyServer/socket/CUT_WSClient.h"

namespace {

constexpr int kConnected = 0;
constexpr int kNotConnected = 90;

// Suspends a table's ownership of its records until the scope ends.
class OwnershipPause {
  public:
    explicit OwnershipPause(QoArraySerial2& table)
        : m_table(table), m_owning(table.getDeleteObject()) {
        m_table.setDeleteObject(false);
    }
    ~OwnershipPause() { m_table.setDeleteObject(m_owning); }
    OwnershipPause(const OwnershipPause&) = delete;
    OwnershipPause& operator=(const OwnershipPause&) = delete;

  private:
    QoArraySerial2& m_table;
    const bool m_owning;
};

}  // namespace

NySeClientApp::NySeClientApp() : m_socket(new CUT_WSClient) {}

NySeClientApp::~NySeClientApp() {
    delete m_socket;
}

// The schema is agreed once for each connection: the next server may grant another one.
int NySeClientApp::connect(int port, const char* address, int) {
    m_schema = NySe::noSchema;
    m_socket->Reset();
    const int result =
        m_socket->Connect(static_cast<unsigned int>(port), address, -1, AF_INET, SOCK_STREAM);
    if (result != UTE_SUCCESS) return kNotConnected;
    // A request without a reply must not delay the next one.
    port::setNoDelay(m_socket->GetSocket());
    return kConnected;
}

bool NySeClientApp::disconnect() {
    const LONG code = NySe::actionDisconnect;
    sendBinary(&code, sizeof code);
    return m_socket->CloseConnection() == UTE_SUCCESS;
}

void NySeClientApp::interrupt() {
    port::shutDown(m_socket->GetSocket());
}

int NySeClientApp::IsConnected() {
    return m_socket->IsConnected();
}

unsigned NySeClientApp::getPort() const {
    return ntohs(m_socket->getsockAddr().sin_port);
}

CString NySeClientApp::getStrAddress() const {
    return CString(m_socket->getszAddress());
}

CString NySeClientApp::getHostName() const {
    return NySe::resultOr(CString(), [] { return CString(port::computerName().c_str()); });
}

int NySeClientApp::sendBinary(const void* data, int length) {
    return m_socket->Send(static_cast<const char*>(data), length);
}

int NySeClientApp::receiveBinary(char* buffer, int length, int timeout) {
    return m_socket->Receive(buffer, length, timeout);
}

bool NySeClientApp::sendMemFile(NySeMemFile& message) {
    if (message.getActionType() > NySe::lastSendableAction) return false;
    const int length = static_cast<int>(message.getLength());
    const int sent = sendBinary(message.getBuffer(), length);
    return sent != 0 && sent == length;
}

// A negative length counts as an empty reply.
bool NySeClientApp::receiveMemfile(CMemFile& into) {
    bool complete = false;
    NySe::succeeds([&] {
        complete = NySe::receiveMessage(into, [this](char* buffer, int length, int timeOut) {
            return receiveBinary(buffer, length, timeOut);
        });
    });
    return complete;
}

bool NySeClientApp::receiveString(CString& into) {
    NySeMemFile reply;
    if (!receiveMemfile(reply)) return false;
    NySe::readReplyString(reply, into);
    return true;
}

void NySeClientApp::transfertObject(QoArraySerial2& from, QoArraySerial2& to) {
    const INT_PTR held = to.GetSize();
    const OwnershipPause pauseTo(to);
    const OwnershipPause pauseFrom(from);
    try {
        to.addFrom(from);
    } catch (...) {
        // The records stay in `from`.
        to.RemoveAt(held, to.GetSize() - held);
        throw;
    }
    from.RemoveAll();
}

void NySeClientApp::initializeSchema() {
    const LONG asked = NySe::schema2015;
    if (!requestUnder(NySe::schema2015, NySe::actionInitializeSchema, asked)) return;
    receiveScalarInto(m_schema);
}

bool NySeClientApp::isAlive() {
    return request(NySe::actionIsAlive) && receiveScalar<LONG>(0) == NySe::kAliveAnswer;
}

double NySeClientApp::getVersion() {
    constexpr double kNoVersion = -1.0;
    const LONG code = NySe::actionGetVersion;
    if (sendBinary(&code, sizeof code) != int{sizeof code}) return kNoVersion;
    return receiveScalar(kNoVersion);
}
