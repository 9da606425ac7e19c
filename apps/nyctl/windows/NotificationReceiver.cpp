#include "apps/nyctl/NotificationReceiver.h"

#include "apps/nyctl/windows/WatchWindow.h"

namespace apps::nyctl {

class NotificationReceiver::Source : public WatchWindow {
  public:
    using WatchWindow::WatchWindow;
};

NotificationReceiver::NotificationReceiver(NyServerApp& listener, Show show)
    : m_source(std::make_unique<Source>(listener, std::move(show))) {}

NotificationReceiver::~NotificationReceiver() = default;

bool NotificationReceiver::receive(DWORD milliseconds) {
    if (dispatchNextMessage()) return true;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds, QS_ALLINPUT);
    return dispatchNextMessage();
}

}  // namespace apps::nyctl
