#include "apps/monitor/ThrottledListener.h"

#include "NyServer/listener/NyServerThreadApp.h"

Throttle ThrottledListener::throttle() {
    const ThreadListLock lock(*this);
    Throttle throttle{getPostMsgCount(), getPostMessageLimit(), false};
    for (const ThreadListEntry* entry = ThreadListFirst(); entry != nullptr; entry = entry->next)
        if (static_cast<const NyServerThreadApp*>(entry->worker)->isPaused())
            throttle.isPaused = true;
    return throttle;
}
