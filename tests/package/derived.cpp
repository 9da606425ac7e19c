// A host's classes: one derived from each class of the library that has virtual functions. What the
// compiler adds to them must be in the library. Ends with 0.
#include <afx.h>

#include <QoArraySerial2.h>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/records/NySeConnection.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLock.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeSessionLock.h"
#include "NyServer/records/NySeSessionLockPtrArray.h"
#include "NyServer/records/NySeUser.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "NyServer/socket/CUT_FileDataSource.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/CUT_WSThread.h"

namespace {

template <class Base>
class Derived : public Base {
  public:
    using Base::Base;
};

class Record : public QoObject2 {
  public:
    QoObject2* vClone() const override { return new Record(*this); }
};

class Server : public CUT_WSServer {
    CUT_WSThread* CreateInstance() override { return new Derived<CUT_WSThread>; }
    void ReleaseInstance(CUT_WSThread* worker) override { delete worker; }
};

template <class... Classes>
void construct() {
    (static_cast<void>(Classes()), ...);
}

}  // namespace

int main() {
    construct<Record, Derived<QoArraySerial2>, Derived<CMemFile>>();
    construct<Derived<NySeConnection>, Derived<NySeLock>, Derived<NySeMessage>,
              Derived<NySeSessionLock>, Derived<NySeUser>>();
    construct<Derived<NySeConnectionArray>, Derived<NySeLockArray>,
              Derived<NySeSessionLockPtrArray>, Derived<NySeUserPtrArray>>();
    construct<Derived<NySeMemFile>, Derived<NySeClientApp>, Derived<CUT_WSClient>,
              Derived<CUT_File>, Server, Derived<NyServerApp>>();
    const WCHAR path[] = {0};
    const Derived<CUT_FileDataSource> file(path, 1);
    const Derived<NyServerThreadApp> worker(nullptr);
    return 0;
}
