#include "NyServer/base/support/ThreadBlocks.h"

namespace {

// Plain data, so that it can still be read while the thread's other objects are destroyed.
constinit thread_local ThreadBlocks blocksOfThread{};
// Null before the first use and after the end of the thread.
constinit thread_local ThreadBlocks* usable = nullptr;
constinit thread_local bool isReturned = false;

struct ReturnAtThreadEnd {
    ~ReturnAtThreadEnd() {
        usable = nullptr;
        isReturned = true;
        returnThreadBlocks(blocksOfThread);
    }
};

[[gnu::noinline]] ThreadBlocks* watchThread() {
    if (isReturned) return nullptr;
    static thread_local ReturnAtThreadEnd watcher;
    static_cast<void>(watcher);
    usable = &blocksOfThread;
    return usable;
}

}  // namespace

ThreadBlocks* threadBlocks() {
    return usable != nullptr ? usable : watchThread();
}
