// What the benchmarks measure on: tables filled from a fixed seed, once as the plain structures
// that a hand-written codec would use and once as the library's records, with the same values.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

namespace bench {

// The records of W1 and of W2.
inline constexpr size_t kLocks = 10'000;
inline constexpr size_t kUsers = 1'000;

inline constexpr size_t kHolders = 3;
inline constexpr size_t kNameLength = 24;

struct Holder {
    uint32_t state = 0;
    int32_t session = 0;
};

struct Lock {
    std::u16string name;
    std::vector<Holder> holders;
};

struct User {
    int32_t port = 0;
    std::u16string host, user, computer;
    int32_t session = 0;
    int32_t schema = 0;
    int32_t softType = 0;
};

// One request for a lock.
struct Request {
    int32_t action = 0;
    int32_t payloadLength = 0;
    std::u16string name;
    uint32_t mode = 0;
};

template <class Record>
using Table = std::vector<std::unique_ptr<Record>>;

// A linear congruential generator; its high bits are used.
class Seed {
  public:
    uint32_t below(uint32_t limit) {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<uint32_t>((m_state >> 33) % limit);
    }
    std::u16string text(size_t length) {
        static constexpr char16_t kLetters[] =
            u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._";
        std::u16string made;
        for (size_t i = 0; i < length; ++i) made += kLetters[below(std::size(kLetters) - 1)];
        return made;
    }

  private:
    uint64_t m_state = 20240607;
};

inline Table<Lock> plainLocks(size_t count) {
    Seed seed;
    Table<Lock> table;
    table.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        auto lock = std::make_unique<Lock>();
        lock->name = seed.text(kNameLength);
        lock->holders.resize(kHolders);
        for (Holder& holder : lock->holders) {
            holder.state = seed.below(4);
            holder.session = static_cast<int32_t>(1 + seed.below(65535));
        }
        table.push_back(std::move(lock));
    }
    return table;
}

inline Table<User> plainUsers(size_t count) {
    Seed seed;
    Table<User> table;
    table.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        auto user = std::make_unique<User>();
        user->port = static_cast<int32_t>(1024 + seed.below(64000));
        user->host = seed.text(10 + seed.below(5));
        user->user = seed.text(10 + seed.below(5));
        user->computer = seed.text(10 + seed.below(5));
        user->session = static_cast<int32_t>(1 + seed.below(65535));
        user->schema = static_cast<int32_t>(1 + seed.below(100));
        user->softType = static_cast<int32_t>(seed.below(10));
        table.push_back(std::move(user));
    }
    return table;
}

inline Request plainRequest() {
    Seed seed;
    Request request;
    request.action = 11;
    request.payloadLength = 4 + 2 * kNameLength + 4;
    request.name = seed.text(kNameLength);
    request.mode = seed.below(4);
    return request;
}

inline CString textOf(const std::u16string& text) {
    return CString(reinterpret_cast<LPCTSTR>(text.c_str()), static_cast<int>(text.size()));
}

inline void fill(NySeLockArray& table, size_t count) {
    for (const auto& plain : plainLocks(count)) {
        auto lock = std::make_unique<NySeLock>();
        lock->setStrLockName(textOf(plain->name));
        for (const Holder& holder : plain->holders) {
            auto entry = std::make_unique<NySeSessionLock>();
            entry->setLockState(holder.state);
            entry->setSessionNumber(holder.session);
            lock->getHolders().append(entry.release());
        }
        table.append(lock.release());
    }
}

inline void fill(NySeUserPtrArray& table, size_t count) {
    for (const auto& plain : plainUsers(count)) {
        auto user = std::make_unique<NySeUser>();
        user->setPort(plain->port);
        user->setStrHostName(textOf(plain->host));
        user->setStrUserName(textOf(plain->user));
        user->setStrComputerName(textOf(plain->computer));
        user->setSessionNumber(plain->session);
        user->setSchema(plain->schema);
        user->setSoftType(plain->softType);
        table.append(user.release());
    }
}

}  // namespace bench
