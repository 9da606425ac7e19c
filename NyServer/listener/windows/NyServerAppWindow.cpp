// Notifications as messages of a window.
#include "NyServer/listener/NyServerApp.h"

#include <afxwin.h>

#include <cstdlib>
#include <cstring>

#include "NyServer/base/detail/WindowsHandles.h"

namespace {

constexpr DWORD kLimitWithoutSetting = 3600;

NySe::UniqueRegistryKey openWindowsSettings() {
    HKEY key = nullptr;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                    L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Windows\\", 0, KEY_READ,
                    &key);
    return NySe::UniqueRegistryKey(key);
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

// Returns the setting of the system; 3600 if it cannot be read.
DWORD NyServerApp::systemPostMessageLimit() {
    const NySe::UniqueRegistryKey key = openWindowsSettings();
    DWORD limit = 0;
    DWORD size = sizeof limit;
    const LSTATUS status = ::RegQueryValueExW(key.get(), L"USERPostMessageLimit", nullptr, nullptr,
                                              reinterpret_cast<BYTE*>(&limit), &size);
    return status == ERROR_SUCCESS ? limit : kLimitWithoutSetting;
}

HWND NyServerApp::appWindow() {
    const ThreadListLock lock(*this);
    const CWnd* const window = getAppWnd();
    return window ? window->GetSafeHwnd() : nullptr;
}

void NyServerApp::postToWindow(unsigned int message, CMemFile& file) {
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

// Any program can post a message without a block: counts only as many as were posted here.
void NyServerApp::consumeEmptyMessage() {
    const ThreadListLock lock(*this);
    if (m_emptyMsgCount < 1) return;
    --m_emptyMsgCount;
    decreasePostMsgCount();
}
