#include "NyServer/listener/NyServerApp.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

#include "NyServer/base/detail/UniqueHandle.h"
#include "NyServer/host/NyFctIpUtil.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr int kListenQueue = 5;
constexpr DWORD kTick = 50;  // milliseconds
constexpr DWORD kLimitWithoutSetting = 3600;
constexpr double kShare = 0.9;

NySe::UniqueRegistryKey openWindowsSettings() {
    HKEY key = nullptr;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                    L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Windows\\", 0, KEY_READ,
                    &key);
    return NySe::UniqueRegistryKey(key);
}

// Returns the setting of the system; 3600 if it cannot be read.
DWORD readSystemPostMessageLimit() {
    const NySe::UniqueRegistryKey key = openWindowsSettings();
    DWORD limit = 0;
    DWORD size = sizeof limit;
    const LSTATUS status = ::RegQueryValueExW(key.get(), L"USERPostMessageLimit", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&limit), &size);
    return status == ERROR_SUCCESS ? limit : kLimitWithoutSetting;
}

// Returns a value below 1 for limits that are too large for the result.
long shareOfPostMessageLimit(DWORD systemLimit) {
    return static_cast<long>(static_cast<long long>(std::floor(systemLimit * kShare)));
}

// Moves the content of `file` into the block. Returns the address of the block's bytes; null for an
// empty block.
void* moveInto(HGLOBAL block, CMemFile& file, DWORD size) {
    void* const address = ::GlobalLock(block);
    BYTE* const bytes = file.Detach();
    if (address) std::memcpy(address, bytes, size);
    std::free(bytes);
    ::GlobalUnlock(block);
    return address;
}

}  // namespace

NyServerApp::NyServerApp() = default;

NyServerApp::~NyServerApp() {
    endConnections();
}

// Stops accepting first: otherwise peers that reconnect all the time could prevent an idle moment.
void NyServerApp::endConnections() {
    SetShutDownFlag(1);
    StopAccept();
    while (!RunDownIfIdle()) ::Sleep(kTick);
}

int NyServerApp::Start() {
    if (IsAccepting()) return OnError(UTE_ERROR);
    const int result = ConnectToPort(m_portNumber, kListenQueue, AF_INET, ::htonl(INADDR_ANY));
    return result != UTE_SUCCESS ? result : StartAccept();
}

CUT_WSThread* NyServerApp::CreateInstance() {
    return new (std::nothrow) NyServerThreadApp(this);
}

void NyServerApp::ReleaseInstance(CUT_WSThread* worker) {
    delete worker;
}

CString NyServerApp::_getIpAdress() {
    return NyFctIpUtil::_getIpAddress();
}

CString NyServerApp::_getIpAdressByName(const CString& name) {
    return NyFctIpUtil::_getIpAddressFromHostName(name);
}

// Under the lock, so that no thread uses the previous window object after the return.
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
    NySe::UniqueGlobalBlock block(::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size));
    if (!block) return;
    void* const address = moveInto(block.get(), file, size);
    // The window frees the block by its address; an empty block has none.
    if (post(message, size, address) && address) static_cast<void>(block.release());
}

// The window may have been destroyed since it was checked; with a null handle the system would post
// to the queue of this thread. The lock is held from posting to counting: otherwise a window that
// consumes the message at once would decrement the count first, and it would never return to 0.
bool NyServerApp::post(unsigned int message, DWORD size, void* address) {
    const ThreadListLock lock(*this);
    const HWND window = appWindow();
    if (!window) return false;
    if (!address) ++m_emptyMsgCount;
    ::PostMessageW(window, message, size, reinterpret_cast<LPARAM>(address));
    increasePostMsgCount();
    return true;
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

// Any program can post a message without a block: counts only as many as were posted here.
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
