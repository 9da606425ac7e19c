#include <new>
#include <utility>

#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/CUT_WSThread.h"
#include "NyServer/socket/SocketCodes.h"

CUT_WSServer::ThreadListLock::ThreadListLock(CUT_WSServer& server)
    : m_section(server.m_threadListLock) {
    ::EnterCriticalSection(&m_section);
}

CUT_WSServer::ThreadListLock::~ThreadListLock() {
    ::LeaveCriticalSection(&m_section);
}

int CUT_WSServer::ThreadListAdd(CUT_WSThread* worker, DWORD threadId, SOCKET socket) {
    const ThreadListLock lock(*this);
    auto* entry =
        new (std::nothrow) ThreadListEntry{worker, threadId, socket, nullptr, m_threadList};
    if (!entry) return 0;
    if (m_threadList) m_threadList->previous = entry;
    m_threadList = entry;
    ++m_connectionCount;
    return 1;
}

int CUT_WSServer::ThreadListRemove(DWORD threadId) {
    const ThreadListLock lock(*this);
    ThreadListEntry* entry = m_threadList;
    while (entry && entry->threadId != threadId) entry = entry->next;
    if (!entry) return 1;
    (entry->previous ? entry->previous->next : m_threadList) = entry->next;
    if (entry->next) entry->next->previous = entry->previous;
    delete entry;
    --m_connectionCount;
    return 1;
}

int CUT_WSServer::ThreadListGetLength() {
    return ThreadListForEach([](ThreadListEntry&) {});
}

int CUT_WSServer::ThreadListKill() {
    const ThreadListLock lock(*this);
    ThreadListForEach([](ThreadListEntry& entry) {
        ::WSACancelBlockingCall();
        entry.worker->m_abort.store(1, std::memory_order_relaxed);
        entry.worker->OnError(UTE_SUCCESS);
    });
    return FreeThreadList();
}

// The identifiers are given as handles on purpose, and no handle is opened.
int CUT_WSServer::ThreadListSuspend() {
    return ThreadListForEach(
        [](ThreadListEntry& entry) { ::SuspendThread(UlongToHandle(entry.threadId)); });
}

int CUT_WSServer::ThreadListResume() {
    return ThreadListForEach(
        [](ThreadListEntry& entry) { ::ResumeThread(UlongToHandle(entry.threadId)); });
}

template <class Action>
int CUT_WSServer::ThreadListForEach(Action action) {
    const ThreadListLock lock(*this);
    int length = 0;
    for (ThreadListEntry* entry = m_threadList; entry; entry = entry->next) {
        action(*entry);
        ++length;
    }
    return length;
}

int CUT_WSServer::FreeThreadList() {
    const ThreadListLock lock(*this);
    int length = 0;
    while (m_threadList) {
        delete std::exchange(m_threadList, m_threadList->next);
        ++length;
    }
    m_connectionCount = 0;
    return length;
}
