#include <cstdlib>
#include <cstring>

#include "NyServer/listener/NyServerApp.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/listener/PostMessageLimit.h"

namespace {

// Takes the content of `file`. The address of the block's bytes; null for an empty block.
void* moveInto(HGLOBAL block, CMemFile& file, DWORD size) {
    void* const address = ::GlobalLock(block);
    BYTE* const bytes = file.Detach();
    if (address) std::memcpy(address, bytes, size);
    std::free(bytes);
    ::GlobalUnlock(block);
    return address;
}

}  // namespace

// Under the lock, so that whoever takes the window object back knows that nobody looks at it.
void NyServerApp::setAppWnd(CWnd* window) {
    const ThreadListLock lock(*this);
    m_appWnd.store(window, std::memory_order_relaxed);
    resetPostMsgCount();
}

HWND NyServerApp::appWindow() {
    const ThreadListLock lock(*this);
    const CWnd* const window = getAppWnd();
    return window ? window->GetSafeHwnd() : nullptr;
}

void NyServerApp::postMessageToMainFrame(unsigned int message, CMemFile& file) {
    if (!::IsWindow(appWindow())) return;
    file.SeekToBegin();
    const DWORD size = static_cast<DWORD>(file.GetLength());
    UniqueGlobalBlock block(::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size));
    if (!block) return;
    void* const address = moveInto(block.get(), file, size);
    post(message, size, address, std::move(block));
}

// The window may have gone since it was looked at: without a handle the system would post to this
// thread's own queue, where nobody consumes. Under the lock from posting to counting: a window that
// consumes the message at once would count it down before it was counted up, and the count would
// never again come back to 0.
void NyServerApp::post(unsigned int message, DWORD size, void* address, UniqueGlobalBlock block) {
    const ThreadListLock lock(*this);
    const HWND window = appWindow();
    if (!window) return;
    // From its address the window can free the block; an empty one has none.
    if (address)
        static_cast<void>(block.release());
    else
        ++m_emptyMsgCount;
    ::PostMessageW(window, message, size, reinterpret_cast<LPARAM>(address));
    increasePostMsgCount();
}

void NyServerApp::increasePostMsgCount() {
    const ThreadListLock lock(*this);
    ++m_postMsgCount;
    if (m_postMsgCount > getPostMessageLimit()) stopThread(true);
}

void NyServerApp::decreasePostMsgCount() {
    const ThreadListLock lock(*this);
    --m_postMsgCount;
    if (m_postMsgCount < 1) resetPostMsgCount();
}

void NyServerApp::resetPostMsgCount() {
    m_postMsgCount = 0;
    m_emptyMsgCount = 0;
    stopThread(false);
}

// Any program can post a message without a block: none is consumed that was not posted here.
void NyServerApp::consumeEmptyMessage() {
    const ThreadListLock lock(*this);
    if (m_emptyMsgCount < 1) return;
    --m_emptyMsgCount;
    decreasePostMsgCount();
}

int NyServerApp::getPostMsgCount() {
    const ThreadListLock lock(*this);
    return m_postMsgCount;
}

void NyServerApp::stopThread(bool pause) {
    for (const ThreadListEntry* entry = ThreadListFirst(); entry; entry = entry->next) {
        auto* const worker = dynamic_cast<NyServerThreadApp*>(entry->worker);
        if (worker) worker->setPaused(pause);
    }
}

long NyServerApp::getPostMessageLimit() {
    if (m_postMsgLimit <= 0) m_postMsgLimit = shareOfPostMessageLimit(readSystemPostMessageLimit());
    return m_postMsgLimit;
}
