// The floor: the same values written and read by hand, without tags, versions or shared objects.
//
//   table   = count u32, records
//   string  = length u32 in characters, 2 bytes each
//   lock    = name string, holder count u32, {state u32, session i32}...
//   user    = port i32, 3 strings, session i32, schema i32, soft type i32
//   request = action i32, payload length i32, name string, mode u32
//
// The writer copies into a buffer that is large enough and checks nothing. The reader checks every
// length against what is left and allocates each record, its string and its holders.
#pragma once

#include <cstring>
#include <stdexcept>

#include "bench/Values.h"

namespace bench {

// Enough for what the floor writes of W1.
inline constexpr size_t kFloorBytes = 2U << 20;

class FloorWriter {
  public:
    explicit FloorWriter(unsigned char* target) : m_next(target) {}

    template <class T>
    void value(T value) {
        raw(&value, sizeof value);
    }
    void raw(const void* source, size_t bytes) {
        std::memcpy(m_next, source, bytes);
        m_next += bytes;
    }
    void text(const std::u16string& text) {
        value(static_cast<uint32_t>(text.size()));
        raw(text.data(), text.size() * sizeof(char16_t));
    }

    void record(const Lock& lock) {
        text(lock.name);
        value(static_cast<uint32_t>(lock.holders.size()));
        raw(lock.holders.data(), lock.holders.size() * sizeof(Holder));
    }
    void record(const User& user) {
        value(user.port);
        text(user.host);
        text(user.user);
        text(user.computer);
        value(user.session);
        value(user.schema);
        value(user.softType);
    }
    void record(const Request& request) {
        value(request.action);
        value(request.payloadLength);
        text(request.name);
        value(request.mode);
    }
    template <class Record>
    void record(const Table<Record>& table) {
        value(static_cast<uint32_t>(table.size()));
        for (const auto& each : table) record(*each);
    }

    const unsigned char* end() const { return m_next; }

  private:
    unsigned char* m_next;
};

class FloorReader {
  public:
    FloorReader(const unsigned char* start, const unsigned char* end) : m_next(start), m_end(end) {}

    template <class T>
    T value() {
        need(sizeof(T));
        T value;
        std::memcpy(&value, m_next, sizeof value);
        m_next += sizeof value;
        return value;
    }
    void text(std::u16string& text) {
        const size_t length = value<uint32_t>();
        need(length * sizeof(char16_t));
        text.resize(length);
        std::memcpy(text.data(), m_next, length * sizeof(char16_t));
        m_next += length * sizeof(char16_t);
    }

    void record(Lock& lock) {
        text(lock.name);
        const size_t count = value<uint32_t>();
        need(count * sizeof(Holder));
        lock.holders.resize(count);
        std::memcpy(lock.holders.data(), m_next, count * sizeof(Holder));
        m_next += count * sizeof(Holder);
    }
    void record(User& user) {
        user.port = value<int32_t>();
        text(user.host);
        text(user.user);
        text(user.computer);
        user.session = value<int32_t>();
        user.schema = value<int32_t>();
        user.softType = value<int32_t>();
    }
    void record(Request& request) {
        request.action = value<int32_t>();
        request.payloadLength = value<int32_t>();
        text(request.name);
        request.mode = value<uint32_t>();
    }
    template <class Record>
    void record(Table<Record>& table) {
        const size_t count = value<uint32_t>();
        need(count);
        table.reserve(count);
        for (size_t i = 0; i < count; ++i) {
            auto each = std::make_unique<Record>();
            record(*each);
            table.push_back(std::move(each));
        }
    }

  private:
    void need(size_t bytes) const {
        if (static_cast<size_t>(m_end - m_next) < bytes) throw std::runtime_error("short input");
    }

    const unsigned char* m_next;
    const unsigned char* m_end;
};

}  // namespace bench
