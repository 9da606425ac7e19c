// NySeUser: one connected user session.
#pragma once

#include "NyServer/records/NySeRecord.h"

// The user's name and machine, the port of the user's notification listener, and the session number
// and schema of the user's client. A new user has no session and no port. One object may be used by
// one thread at a time.
//
// Compare keys: 1 user name, 2 session number, 3 user name and then session number. Names compare
// without letter case.
class NYSERVER_API NySeUser : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeUser)

  public:
    NYSERVER_INLINE const CString& getStrHostName() const { return m_strHostName; }
    NYSERVER_INLINE void setStrHostName(const CString& hostName) { m_strHostName = hostName; }

    NYSERVER_INLINE const CString& getStrUserName() const { return m_strUserName; }
    NYSERVER_INLINE void setStrUserName(const CString& userName) { m_strUserName = userName; }

    NYSERVER_INLINE const CString& getStrComputerName() const { return m_strComputerName; }
    NYSERVER_INLINE void setStrComputerName(const CString& computerName) {
        m_strComputerName = computerName;
    }

    // The port of the user's notification listener.
    NYSERVER_INLINE const LONG& getPort() const { return m_port; }
    NYSERVER_INLINE void setPort(const LONG& port) { m_port = port; }

    // Assigned by the central server; locks identify their holders by it alone.
    NYSERVER_INLINE const LONG& getSessionNumber() const { return m_sessionNumber; }
    NYSERVER_INLINE void setSessionNumber(const LONG& sessionNumber) {
        m_sessionNumber = sessionNumber;
    }

    // The request schema of the user's client.
    NYSERVER_INLINE const LONG& getSchema() const { return m_schema; }
    NYSERVER_INLINE void setSchema(const LONG& schema) { m_schema = schema; }

    // The kind of client application; stored, never interpreted.
    NYSERVER_INLINE const LONG& getSoftType() const { return m_softType; }
    NYSERVER_INLINE void setSoftType(const LONG& softType) { m_softType = softType; }

  private:
    CString m_strHostName;
    CString m_strUserName;
    CString m_strComputerName;
    LONG m_port = -1;
    LONG m_sessionNumber = -1;
    LONG m_schema = 0;
    LONG m_softType = 0;
};
