#pragma once

#include <afx.h>

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/framing/NySeActions.h"
#include "NyServer/NyServerApi.h"

class NyServerApp;

// One notification in the hands of the window that it was posted to. A window procedure makes one
// for each message NySe::_TM_NYSERVERMESSAGE:
//
//   if (message == NySe::_TM_NYSERVERMESSAGE) {
//       NyServerNotification notification(wParam, lParam, &listener);
//       show(notification.getActionType(), notification.getMemFile());
//       return 0;
//   }
//
// Ownership: it frees the message's block. Threads: it belongs to the window's thread.
class NYSERVER_API NyServerNotification {
  public:
    // Takes ownership of the block. The destructor reports the message to `listener` as consumed;
    // `listener` may be null and must outlive this object. An address that is not that of a
    // moveable block is ignored: the notification has no action and no payload, and nothing is
    // reported. A message without an address is reported only while the listener has posted empty
    // messages that are not consumed yet.
    NyServerNotification(WPARAM size, LPARAM address, NyServerApp* listener);
    ~NyServerNotification();
    NyServerNotification(const NyServerNotification&) = delete;
    NyServerNotification& operator=(const NyServerNotification&) = delete;

    // 50 to 58; noAction, and no payload, when the block holds no notification.
    NYSERVER_INLINE NySe::ActionType getActionType() const { return m_action; }

    // What the central server sent, standing at its start and not able to grow. It is this
    // object's.
    NYSERVER_INLINE CMemFile& getMemFile() { return m_payload; }

  private:
    void readMessage(BYTE* bytes, size_t size);

    UniqueGlobalBlock m_block;
    NyServerApp* m_listener;
    NySe::ActionType m_action = NySe::noAction;
    CMemFile m_payload{0};
};
