#include "tests/support/System.h"

#include <array>

#include "NyServer/base/detail/WindowsHandles.h"
// After windows.h.
#include <tlhelp32.h>

int countThreads() {
    const NySe::UniqueKernelHandle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = ::Thread32First(snapshot.get(), &entry); more;
         more = ::Thread32Next(snapshot.get(), &entry))
        if (entry.th32OwnerProcessID == ::GetCurrentProcessId()) ++count;
    return count;
}

ULONGLONG processorTime() {
    FILETIME made, ended, kernel, user;
    ::GetProcessTimes(::GetCurrentProcess(), &made, &ended, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<ULONGLONG>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    };
    return (ticks(kernel) + ticks(user)) / 10000;
}

std::size_t handleLevel() {
    std::array<NySe::UniqueKernelHandle, 64> probes;
    for (auto& probe : probes) probe.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return reinterpret_cast<std::size_t>(probes.back().get()) / 4;
}

bool endsThreadsByForce() {
    return true;
}

SOCKET socketConnectedTo(int port) {
    SOCKET socket = 4;
    while (socket < 0x4000 && peerPortOf(socket) != port) socket += 4;
    return socket < 0x4000 ? socket : INVALID_SOCKET;
}

NySe::UniqueSocket otherHandleOf(SOCKET socket) {
    WSAPROTOCOL_INFOW info{};
    ::WSADuplicateSocketW(socket, ::GetCurrentProcessId(), &info);
    return NySe::UniqueSocket(::WSASocketW(FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO,
                                           FROM_PROTOCOL_INFO, &info, 0, WSA_FLAG_OVERLAPPED));
}

void* allocatePages(std::size_t size) {
    return ::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
}

void forbidAccess(void* pages, std::size_t size) {
    DWORD before = 0;
    ::VirtualProtect(pages, size, PAGE_NOACCESS, &before);
}

void freePages(void* pages, std::size_t) {
    ::VirtualFree(pages, 0, MEM_RELEASE);
}
