// NySeConnection: one open connection.
#pragma once

#include "NyServer/records/NySeRecord.h"

// A named resource, the id that the central server gave it, and how often it is open. One object
// may be used by one thread at a time.
//
// Compare keys: 1 id, 2 connection string without letter case.
class NYSERVER_API NySeConnection : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeConnection)

  public:
    NYSERVER_INLINE const CString& getStrConnection() const { return m_strConnection; }
    NYSERVER_INLINE void setStrConnection(const CString& connection) {
        m_strConnection = connection;
    }

    NYSERVER_INLINE const LONG& getId() const { return m_id; }
    NYSERVER_INLINE void setId(const LONG& id) { m_id = id; }

    // The number of opens that have not been closed.
    NYSERVER_INLINE const LONG& getRefCount() const { return m_refCount; }
    NYSERVER_INLINE void setRefCount(const LONG& refCount) { m_refCount = refCount; }

  private:
    CString m_strConnection;
    LONG m_id = 0;
    LONG m_refCount = 0;
};
