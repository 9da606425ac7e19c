#include "apps/monitor/MonitorListener.h"

#include "NyServer/listener/NyServerThreadApp.h"

namespace apps::monitor {

Backlog MonitorListener::backlog() {
    const ThreadListLock lock(*this);
    Backlog backlog{getPostMsgCount(), getPostMessageLimit(), false};
    for (const ThreadListEntry* entry = ThreadListFirst(); entry != nullptr; entry = entry->next)
        if (static_cast<const NyServerThreadApp*>(entry->worker)->isPaused())
            backlog.isPaused = true;
    return backlog;
}

}  // namespace apps::monitor
