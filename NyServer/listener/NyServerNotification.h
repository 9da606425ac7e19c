#pragma once

#include <afx.h>

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/framing/NySeActions.h"
#include "NyServer/NyServerApi.h"

class NyServerApp;

// One notification that was posted to a window. The window procedure creates one for each message
// NySe::_TM_NYSERVERMESSAGE:
//
//   if (message == NySe::_TM_NYSERVERMESSAGE) {
//       NyServerNotification notification(wParam, lParam, &listener);
//       show(notification.getActionType(), notification.getMemFile());
//       return 0;
//   }
//
// Ownership: owns the block of the message. Threads: used on the window's thread only.
class NYSERVER_API NyServerNotification {
  public:
    // Takes ownership of the block. The destructor reports the message to `listener` as consumed;
    // `listener` may be null and must outlive this object. If `address` is not that of a moveable
    // block, the notification has no action and no payload, and nothing is reported. A message
    // without an address is reported only while the listener has posted empty messages that are not
    // consumed yet.
    NyServerNotification(WPARAM size, LPARAM address, NyServerApp* listener);
    ~NyServerNotification();
    NyServerNotification(const NyServerNotification&) = delete;
    NyServerNotification& operator=(const NyServerNotification&) = delete;

    // Returns 50 to 58; noAction if the block contains no notification. Then the payload is empty.
    NYSERVER_INLINE NySe::ActionType getActionType() const { return m_action; }

    // Returns the payload that the central server sent, positioned at its start. It cannot grow,
    // and is owned by this object.
    NYSERVER_INLINE CMemFile& getMemFile() { return m_payload; }

  private:
    void readMessage(BYTE* bytes, size_t size);

    NySe::UniqueGlobalBlock m_block;
    NyServerApp* m_listener;
    NySe::ActionType m_action = NySe::noAction;
    CMemFile m_payload{0};
};
