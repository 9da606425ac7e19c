// NySeClientApp: an application's connection to the central server.
#pragma once

#include <afx.h>

#include <memory>

#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeShareMode.h"
#include "NyServer/records/NySeUserPtrArray.h"

class CUT_WSClient;

// Each request is one exchange on one TCP connection: the call sends a message and, if the request
// has a reply, waits for it. Construct; connect; initializeSchema; any requests; disconnect;
// destroy.
//
// Threads: replies are matched to requests by their order alone, so an object can do one exchange
// at a time; callers on several threads lock around each call.
//
// Ownership: the object owns its socket. A copy shares it, and each destructor deletes it: at most
// one of an object and its copies may be destroyed.
//
// No call throws for what the network or the server does: a request that cannot be sent or gets no
// usable reply returns its failure value. A scalar reply must arrive in one piece within 15
// seconds; a longer one may arrive in pieces, at most 30 seconds apart. A table owns the records
// that a call appends to it as its own delete-ownership flag says.
class NYSERVER_API NySeClientApp {
  public:
    NySeClientApp();
    NySeClientApp(const NySeClientApp& other) = default;
    NySeClientApp& operator=(const NySeClientApp& other) = default;
    virtual ~NySeClientApp();

    // Returns 0 when connected, 90 on any failure. address: a dotted IPv4 address or a host name,
    // in ANSI characters. `timeout` is ignored: that of the system applies. The session schema is 0
    // afterwards, until initializeSchema. After a failure the object may connect again; getPort
    // and getStrAddress then return what they say below.
    // REQUIRES: not connected; the socket of an open connection would be lost.
    int connect(int port, const char* address, int timeout);
    // Sends the disconnect code and closes the connection. Returns false if the close failed.
    bool disconnect();
    // Ends both directions of the connection: a call that waits on it fails at once, on Windows at
    // the latest when the server has closed its end too, and so do later calls. Any thread may call
    // it while another is in such a call. The connection is still to be closed by disconnect.
    // REQUIRES: connected; not called during connect, disconnect or destruction.
    void interrupt();
    // Returns 1 while the server keeps the connection open, else 0.
    int IsConnected();

    // Return the port and the dotted address of the server; 0 and empty before the first connect.
    // After a refused connect they are those of the server that refused. After a connect whose host
    // name is unknown, and after disconnect, the address is empty and the port is that of the last
    // server tried.
    unsigned getPort() const;
    CString getStrAddress() const;
    // Returns this computer's name, without asking the server.
    CString getHostName() const;

    // Agrees on the schema of all later requests. It is unchanged if the request cannot be sent or
    // no reply arrives. A reply of fewer than 4 bytes overwrites that many of its low bytes:
    // connect again, whatever getSchemaType returns then.
    void initializeSchema();
    NYSERVER_INLINE NySe::SchemaType getSchemaType() const { return m_schema; }
    // Returns true if the server replies NySe::kAliveAnswer.
    bool isAlive();
    // Returns the server's version; -1.0 if no reply arrives, or if the request cannot be sent;
    // then nothing is read.
    double getVersion();

    // Requests the lock with that name under a share mode (bits of NySe::ShareMode). Returns true
    // if it was granted; false if it was refused and on failure.
    bool lock(const CString& name, unsigned mode);
    // Releases the lock. Returns true if the whole message was sent; the server does not reply.
    bool unLock(const CString& name);
    // Appends the users who hold the lock to `users`. Returns false if nobody holds it and on
    // failure. Returns true if it is held, even if the server sends no table of users or that table
    // is lost. Without a table `users` is unchanged.
    bool isLockBy(const CString& name, NySeUserPtrArray& users);
    // Appends the server's locks to `locks`, which is unchanged on failure.
    void getLock(NySeLockArray& locks);

    // Opens the connection with that name and returns the id that the server assigns to it; -1 on
    // failure.
    long openConnection(const CString& name);
    // Closes it once. A failure is not reported.
    void closeConnection(long id);
    // Appends the users who have it open to `users`, which is unchanged on failure.
    void isOpenConnectionBy(long id, NySeUserPtrArray& users);
    // Appends the server's connections to `connections`, which is unchanged on failure.
    void getConnection(NySeConnectionArray& connections);
    // Sends two numbers and an object, which the application defines. A failure is not reported; an
    // object that cannot be archived is omitted or truncated.
    void sendConnectionData(int first, int second, CObject& object);

    // Appends the server's users to `users`, which is unchanged on failure.
    void getAllUser(NySeUserPtrArray& users);
    // Registers `user` and returns the port for the user's notification listener. Every field of
    // `user` is set to what the server returns. Returns 0 on failure, with `user` unchanged.
    int getPortClient(NySeUser& user);
    // Returns another port for the calling user's notification listener; -1 on failure.
    int getAnotherPort();
    // Renames the calling user. Returns true if the server accepted the name; false if it did not
    // and on failure.
    bool updateUserName(const CString& name);
    // Have the server forward an object, which the application defines, to one user or to all. For
    // one user both are archived under the user's schema. A failure is not reported; an object that
    // cannot be archived is omitted or truncated.
    void sendUserData(NySeUser& user, CObject& object);
    void sendAllUserData(CObject& object);

    // Returns the server's time in seconds since 1970-01-01 UTC; 0 on failure.
    long getCurrentTime();
    // Returns the identity of the server's machine; empty on failure.
    CString getMachineIdentifiant();
    // Replaces the contents of `report` by ten lines on the server. On failure the time is that of
    // 1970-01-01 UTC, shown as local time, and the machine identity is empty.
    void getServerInformation(CStringArray& report);

    // Stops the central server. A failure is not reported.
    void shutDownServer();
    // Has the central server check its tables. A failure is not reported.
    void verifyCoherancy();
    // Returns the server's list of events as the server formats it; empty on failure. The server
    // defines what `value` selects.
    CString getEventListFromEventViewer(int value);

  private:
    int sendBinary(const void* data, int length);
    int receiveBinary(char* buffer, int length, int timeout);
    bool sendMemFile(NySeMemFile& message);
    bool receiveMemfile(CMemFile& into);
    bool receiveString(CString& into);
    // Moves all records of `from` to the end of `to`; `from` is empty afterwards.
    static void transfertObject(QoArraySerial2& from, QoArraySerial2& to);

    // Defined in ClientExchange.h.
    template <class... Arguments>
    bool request(NySe::ActionType action, const Arguments&... arguments);
    template <class... Arguments>
    bool requestUnder(NySe::SchemaType schema, NySe::ActionType action,
                      const Arguments&... arguments);
    template <class Scalar>
    bool receiveScalarInto(Scalar& value);
    template <class Scalar>
    Scalar receiveScalar(Scalar failure);
    template <class Record>
    std::shared_ptr<Record> receiveRecord();
    template <class Table>
    void receiveTable(Table& into);

    CUT_WSClient* m_socket;
    NySe::SchemaType m_schema = NySe::noSchema;
};
