// protobuf:
//
//   .../protobuf   a message that is reused, filled from the table and written into a block, or
//                  parsed and copied into the table
#include <values.pb.h>

#include "bench/peers/Peers.h"

namespace {

namespace values = protobuf_values;
using bench::View;

void assign(std::string& bytes, const std::u16string& text) {
    bytes.assign(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
}

void assign(std::u16string& text, const std::string& bytes) {
    text.resize(bytes.size() / sizeof(char16_t));
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
}

void put(values::Lock& to, const bench::Lock& lock) {
    assign(*to.mutable_name(), lock.name);
    to.mutable_holders()->Reserve(static_cast<int>(lock.holders.size()));
    for (const bench::Holder& each : lock.holders) {
        values::Holder& holder = *to.add_holders();
        holder.set_state(each.state);
        holder.set_session(each.session);
    }
}

void put(values::User& to, const bench::User& user) {
    to.set_port(user.port);
    assign(*to.mutable_host(), user.host);
    assign(*to.mutable_user(), user.user);
    assign(*to.mutable_computer(), user.computer);
    to.set_session(user.session);
    to.set_schema(user.schema);
    to.set_soft_type(user.softType);
}

void put(values::Request& to, const bench::Request& request) {
    to.set_action(request.action);
    to.set_payload_length(request.payloadLength);
    assign(*to.mutable_name(), request.name);
    to.set_mode(request.mode);
}

template <class Message, class Record>
void put(google::protobuf::RepeatedPtrField<Message>& list, const bench::Table<Record>& table) {
    list.Reserve(static_cast<int>(table.size()));
    for (const auto& each : table) put(*list.Add(), *each);
}

void get(const values::Lock& from, bench::Lock& lock) {
    assign(lock.name, from.name());
    lock.holders.reserve(static_cast<size_t>(from.holders_size()));
    for (const auto& each : from.holders()) lock.holders.push_back({each.state(), each.session()});
}

void get(const values::User& from, bench::User& user) {
    user.port = from.port();
    assign(user.host, from.host());
    assign(user.user, from.user());
    assign(user.computer, from.computer());
    user.session = from.session();
    user.schema = from.schema();
    user.softType = from.soft_type();
}

void get(const values::Request& from, bench::Request& request) {
    request.action = from.action();
    request.payloadLength = from.payload_length();
    assign(request.name, from.name());
    request.mode = from.mode();
}

template <class Message, class Record>
void get(const google::protobuf::RepeatedPtrField<Message>& list, bench::Table<Record>& table) {
    table.reserve(static_cast<size_t>(list.size()));
    for (const Message& from : list) {
        auto each = std::make_unique<Record>();
        get(from, *each);
        table.push_back(std::move(each));
    }
}

class Protobuf {
  public:
    View encode(const bench::Table<bench::Lock>& table) {
        m_locks.Clear();
        put(*m_locks.mutable_locks(), table);
        return bytesOf(m_locks);
    }
    View encode(const bench::Table<bench::User>& table) {
        m_users.Clear();
        put(*m_users.mutable_users(), table);
        return bytesOf(m_users);
    }
    View encode(const bench::Request& request) {
        put(m_request, request);
        return bytesOf(m_request);
    }

    void read(View view, bench::Table<bench::Lock>& table) {
        parse(m_locks, view);
        get(m_locks.locks(), table);
    }
    void read(View view, bench::Table<bench::User>& table) {
        parse(m_users, view);
        get(m_users.users(), table);
    }
    void read(View view, bench::Request& request) {
        parse(m_request, view);
        get(m_request, request);
    }

  private:
    template <class Message>
    View bytesOf(const Message& message) {
        const size_t size = message.ByteSizeLong();
        if (size > m_bytes.size()) throw std::length_error("a message beyond the block");
        message.SerializeWithCachedSizesToArray(m_bytes.data());
        return {m_bytes.data(), size};
    }
    template <class Message>
    static void parse(Message& message, View view) {
        if (!message.ParseFromArray(view.data, static_cast<int>(view.size)))
            throw std::runtime_error("no message");
    }

    std::vector<unsigned char> m_bytes = std::vector<unsigned char>(bench::kPeerBytes);
    values::Locks m_locks;
    values::Users m_users;
    values::Request m_request;
};

[[maybe_unused]] const bool added = bench::addPeer<Protobuf>("protobuf");

}  // namespace
