#include "NyServer/socket/HostLookUps.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "NyServer/OutOfMemory.h"

bool HostLookUps::start(const std::function<HANDLE(char*, int)>& request) {
    return zeroIfOutOfMemory([&] {
        m_pending.push_back({nullptr, std::make_unique<Result>()});
        m_pending.back().request = request(m_pending.back().result->bytes, int{kResultSize});
        if (m_pending.back().request) return true;
        m_pending.pop_back();
        return false;
    });
}

void HostLookUps::finish(HANDLE request, bool isFound, char* target) {
    const auto ended = std::find_if(m_pending.begin(), m_pending.end(), [&](const LookUp& lookUp) {
        return lookUp.request == request;
    });
    if (ended == m_pending.end()) return;
    if (isFound) ended->result->moveTo(target);
    m_pending.erase(ended);
}

// A stack may call a look-up cancelled and still write its result, and nobody hears of its end:
// the memory is therefore given up, not freed.
void HostLookUps::abandon() {
    for (LookUp& lookUp : m_pending) {
        ::WSACancelAsyncRequest(lookUp.request);
        static_cast<void>(lookUp.result.release());
    }
    m_pending.clear();
}

// The pointers of a HOSTENT lead into the memory behind it; all are null in one not written yet,
// which a message that is not the stack's may announce.
void HostLookUps::Result::moveTo(char* target) {
    const auto move = [&](auto*& pointer) {
        if (!pointer) return;
        const std::ptrdiff_t offset = reinterpret_cast<char*>(pointer) - bytes;
        pointer = reinterpret_cast<std::remove_reference_t<decltype(pointer)>>(target + offset);
    };
    const auto moveList = [&](char**& list) {
        for (char** entry = list; entry && *entry; ++entry) move(*entry);
        move(list);
    };
    auto& host = *reinterpret_cast<hostent*>(bytes);
    move(host.h_name);
    moveList(host.h_aliases);
    moveList(host.h_addr_list);
    std::memcpy(target, bytes, kResultSize);
}
