// msgpack-cxx:
//
//   .../msgpack   records as arrays and texts as binary, packed into a buffer that is reused;
//                 unpacked without a copy of the texts, then converted into the table
#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

#include "bench/peers/Peers.h"

namespace {

// The elements of an array that must have `count`.
const msgpack::object* elementsOf(const msgpack::object& array, uint32_t count) {
    if (array.type != msgpack::type::ARRAY || array.via.array.size != count)
        throw msgpack::type_error();
    return array.via.array.ptr;
}

template <class Stream, class... Fields>
msgpack::packer<Stream>& packAll(msgpack::packer<Stream>& packer, const Fields&... fields) {
    packer.pack_array(sizeof...(fields));
    (packer.pack(fields), ...);
    return packer;
}

template <class... Fields>
const msgpack::object& convertAll(const msgpack::object& array, Fields&... fields) {
    const msgpack::object* next = elementsOf(array, sizeof...(fields));
    ((next++)->convert(fields), ...);
    return array;
}

}  // namespace

template <>
struct msgpack::adaptor::pack<std::u16string> {
    template <class Stream>
    packer<Stream>& operator()(packer<Stream>& packer, const std::u16string& text) const {
        const auto bytes = static_cast<uint32_t>(text.size() * sizeof(char16_t));
        packer.pack_bin(bytes);
        packer.pack_bin_body(reinterpret_cast<const char*>(text.data()), bytes);
        return packer;
    }
};
template <>
struct msgpack::adaptor::convert<std::u16string> {
    const msgpack::object& operator()(const msgpack::object& from, std::u16string& text) const {
        if (from.type != type::BIN) throw type_error();
        text.resize(from.via.bin.size / sizeof(char16_t));
        std::memcpy(text.data(), from.via.bin.ptr, text.size() * sizeof(char16_t));
        return from;
    }
};

template <>
struct msgpack::adaptor::pack<bench::Holder> {
    template <class Stream>
    packer<Stream>& operator()(packer<Stream>& packer, const bench::Holder& holder) const {
        return packAll(packer, holder.state, holder.session);
    }
};
template <>
struct msgpack::adaptor::convert<bench::Holder> {
    const msgpack::object& operator()(const msgpack::object& from, bench::Holder& holder) const {
        return convertAll(from, holder.state, holder.session);
    }
};

template <>
struct msgpack::adaptor::pack<bench::Lock> {
    template <class Stream>
    packer<Stream>& operator()(packer<Stream>& packer, const bench::Lock& lock) const {
        return packAll(packer, lock.name, lock.holders);
    }
};
template <>
struct msgpack::adaptor::convert<bench::Lock> {
    const msgpack::object& operator()(const msgpack::object& from, bench::Lock& lock) const {
        return convertAll(from, lock.name, lock.holders);
    }
};

template <>
struct msgpack::adaptor::pack<bench::User> {
    template <class Stream>
    packer<Stream>& operator()(packer<Stream>& packer, const bench::User& user) const {
        return packAll(packer, user.port, user.host, user.user, user.computer, user.session,
                       user.schema, user.softType);
    }
};
template <>
struct msgpack::adaptor::convert<bench::User> {
    const msgpack::object& operator()(const msgpack::object& from, bench::User& user) const {
        return convertAll(from, user.port, user.host, user.user, user.computer, user.session,
                          user.schema, user.softType);
    }
};

template <>
struct msgpack::adaptor::pack<bench::Request> {
    template <class Stream>
    packer<Stream>& operator()(packer<Stream>& packer, const bench::Request& request) const {
        return packAll(packer, request.action, request.payloadLength, request.name, request.mode);
    }
};
template <>
struct msgpack::adaptor::convert<bench::Request> {
    const msgpack::object& operator()(const msgpack::object& from, bench::Request& request) const {
        return convertAll(from, request.action, request.payloadLength, request.name, request.mode);
    }
};

namespace {

using bench::View;

class MsgPack {
  public:
    template <class Value>
    View encode(const Value& value) {
        m_buffer.clear();
        msgpack::pack(m_buffer, value);
        return {reinterpret_cast<const unsigned char*>(m_buffer.data()), m_buffer.size()};
    }
    template <class Value>
    static void read(View view, Value& value) {
        const msgpack::object_handle handle =
            msgpack::unpack(reinterpret_cast<const char*>(view.data), view.size,
                            [](msgpack::type::object_type, size_t, void*) { return true; });
        handle.get().convert(value);
    }

  private:
    msgpack::sbuffer m_buffer;
};

[[maybe_unused]] const bool added = bench::addPeer<MsgPack>("msgpack");

}  // namespace
