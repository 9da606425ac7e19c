// NySeMessage: one text as a record.
#pragma once

#include "NyServer/records/NySeRecord.h"

// Carries a text in the same archives as the other records. Messages have no order: there is no
// compare key. One object may be used by one thread at a time.
class NYSERVER_API NySeMessage : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeMessage)

  public:
    NYSERVER_INLINE const CString& getStrMessage() const { return m_strMessage; }
    NYSERVER_INLINE void setStrMessage(const CString& message) { m_strMessage = message; }

  private:
    CString m_strMessage;
};
