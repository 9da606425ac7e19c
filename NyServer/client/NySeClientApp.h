// NySeClientApp: an application's handle on the central server.
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

// Each request is one exchange on one TCP connection: the call sends a message and, where an answer
// is due, waits for it. Construct; connect; initializeSchema; any requests; disconnect; destroy.
//
// Threads: replies are matched to requests by their order alone, so an object carries one exchange
// at a time; callers on several threads lock around each call.
//
// Ownership: the object owns its socket. A copy shares it, and each destructor deletes it: at most
// one of an object and its copies may live to be destroyed.
//
// No call throws for what the network or the server does; a request that could not be sent or got
// no usable answer returns its failure value. A scalar answer must come in one piece within 15
// seconds; a longer one may come in pieces, at most 30 seconds apart. Records that a call appends
// to a table are the table's, by its own delete-ownership flag.
class NYSERVER_API NySeClientApp {
  public:
    NySeClientApp();
    NySeClientApp(const NySeClientApp& other) = default;
    NySeClientApp& operator=(const NySeClientApp& other) = default;
    virtual ~NySeClientApp();

    // 0 when connected, 90 on any failure. address: a dotted IPv4 address or a host name, in ANSI
    // characters. The time-out is ignored: connecting takes as long as the system lets it. The
    // session schema is 0 afterwards, until initializeSchema. After a failure the object may
    // connect again, and names the other end as getPort says.
    // REQUIRES: not connected; the socket of an open connection would be lost.
    int connect(int port, const char* address, int timeout);
    // Says good-bye and closes. False when the close failed.
    bool disconnect();
    // 1 while the server holds the connection, else 0.
    int IsConnected();

    // The port and the dotted address of the connection's other end; before the first connect 0 and
    // empty. A refused connect leaves those of the server that refused. One whose host name is
    // unknown leaves an empty address, and disconnect does too; both keep the port of the last
    // server tried.
    unsigned getPort() const;
    CString getStrAddress() const;
    // This computer's name; the server is not asked.
    CString getHostName() const;

    // Agrees on the schema of all later requests. It stays as it was when the request cannot be
    // sent and when no answer comes. An answer of fewer than 4 bytes overwrites that many of its
    // low bytes: connect again, whatever getSchemaType returns then.
    void initializeSchema();
    NYSERVER_INLINE NySe::SchemaType getSchemaType() const { return m_schema; }
    // True when the server answered as a living one does.
    bool isAlive();
    // The server's version; -1.0 when it does not say, or when it cannot be asked: then nothing is
    // read.
    double getVersion();

    // Asks for the lock of that name under a share mode (bits of NySe::ShareMode). True when it
    // was granted; false when it was refused and on failure.
    bool lock(const CString& name, unsigned mode);
    // Releases the lock. True when the message went out in full; the server does not say what it
    // released.
    bool unLock(const CString& name);
    // Appends the users who hold the lock to `users`. False when nobody holds it and on failure;
    // true when it is held, also when the server does not name the users or its table is lost:
    // `users` stays as it was then, as it does whenever false is returned.
    bool isLockBy(const CString& name, NySeUserPtrArray& users);
    // Appends the server's locks to `locks`, which stays as it was on failure.
    void getLock(NySeLockArray& locks);

    // Opens the connection of that name and returns the id that the server gives it; -1 on failure.
    long openConnection(const CString& name);
    // Closes it once. Nothing tells a failure.
    void closeConnection(long id);
    // Appends the users who have it open to `users`, which stays as it was on failure.
    void isOpenConnectionBy(long id, NySeUserPtrArray& users);
    // Appends the server's connections to `connections`, which stays as it was on failure.
    void getConnection(NySeConnectionArray& connections);
    // Sends two numbers and an object, whose meaning is the application's. Nothing tells a failure;
    // an object that cannot be archived is left out or cut short.
    void sendConnectionData(int first, int second, CObject& object);

    // Appends the server's users to `users`, which stays as it was on failure.
    void getAllUser(NySeUserPtrArray& users);
    // Registers `user` and returns the port for the user's notification listener. `user` takes
    // every field as the server completed it. 0 on failure, with `user` as it was.
    int getPortClient(NySeUser& user);
    // Another port for the calling user's notification listener; -1 on failure.
    int getAnotherPort();
    // Gives the calling user another name. True when the server took it; false when it did not and
    // on failure.
    bool updateUserName(const CString& name);
    // Pass an object, whose meaning is the application's, on for one user or for all. For one user
    // both are archived under the user's schema. Nothing tells a failure; an object that cannot be
    // archived is left out or cut short.
    void sendUserData(NySeUser& user, CObject& object);
    void sendAllUserData(CObject& object);

    // The server's time in seconds since 1970-01-01 UTC; 0 on failure.
    long getCurrentTime();
    // The identity of the server's machine; empty on failure.
    CString getMachineIdentifiant();
    // Replaces the contents of `report` by ten lines on the server. On failure the time is that of
    // 1970-01-01 UTC, shown as local time, and the machine identity is empty.
    void getServerInformation(CStringArray& report);

    // Stops the central server. Nothing tells a failure.
    void shutDownServer();
    // Has the central server check its tables. Nothing tells a failure.
    void verifyCoherancy();
    // The server's list of events as it writes it; empty on failure. What `value` selects is the
    // server's business.
    CString getEventListFromEventViewer(int value);

  private:
    friend struct NySeClientAppAccess;  // the tests' way to the transport

    int sendBinary(const void* data, int length);
    int receiveBinary(char* buffer, int length, int timeout);
    bool sendMemFile(NySeMemFile& message);
    bool receiveMemfile(CMemFile& into);
    bool receiveString(CString& into);
    // Hands all records of `from` to `to` without a copy; `from` is empty then.
    static void transfertObject(QoArraySerial2& from, QoArraySerial2& to);

    // What every request is made of, in ClientExchange.h.
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
