#include "../AfxThreadBlocks.h"

namespace {

// Plain data, so that it can still be looked at when the thread's other objects are destroyed.
constinit thread_local AfxThreadBlocks blocksOfThread{};
constinit thread_local AfxThreadBlocks* usable = nullptr;  // once they are watched, until the end
constinit thread_local bool isReturned = false;

struct ReturnAtThreadEnd {
    ~ReturnAtThreadEnd() {
        usable = nullptr;
        isReturned = true;
        afxReturnBlocks(blocksOfThread);
    }
};

[[gnu::noinline]] AfxThreadBlocks* watchThread() {
    if (isReturned) return nullptr;
    static thread_local ReturnAtThreadEnd watcher;
    static_cast<void>(watcher);
    usable = &blocksOfThread;
    return usable;
}

}  // namespace

AfxThreadBlocks* afxThreadBlocks() {
    return usable != nullptr ? usable : watchThread();
}
