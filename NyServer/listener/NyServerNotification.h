#pragma once

#include <afx.h>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/listener/GlobalBlock.h"
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
    // Takes the block over. `listener`, which may be null, is told when the notification is
    // consumed, that is when this object goes; it must live as long. An address that is no
    // moveable block is left alone and makes a notification without action and payload, of which
    // the listener is not told. A message without an address is told of as long as the listener
    // has posted such messages.
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
