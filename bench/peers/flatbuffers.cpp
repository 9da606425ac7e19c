// FlatBuffers:
//
//   .../flatbuffers   built in a builder that is reused; verified, then copied into the table
#include <flatbuffers/flatbuffers.h>
#include <values_generated.h>

#include "bench/peers/Peers.h"

namespace {

namespace values = flatbuffers_values;
using bench::View;
using flatbuffers::Offset;
using Builder = flatbuffers::FlatBufferBuilder;
using Text = flatbuffers::Vector<uint16_t>;

Offset<Text> put(Builder& builder, const std::u16string& text) {
    uint16_t* characters = nullptr;
    const Offset<Text> made = builder.CreateUninitializedVector<uint16_t>(text.size(), &characters);
    std::memcpy(characters, text.data(), text.size() * sizeof(char16_t));
    return made;
}

Offset<values::Lock> put(Builder& builder, const bench::Lock& lock) {
    const auto name = put(builder, lock.name);
    const auto holders = builder.CreateVectorOfStructs<values::Holder>(
        lock.holders.size(),
        [](size_t at, values::Holder* holder, const bench::Lock* from) {
            *holder = values::Holder(from->holders[at].state, from->holders[at].session);
        },
        &lock);
    return values::CreateLock(builder, name, holders);
}

Offset<values::User> put(Builder& builder, const bench::User& user) {
    const auto host = put(builder, user.host);
    const auto name = put(builder, user.user);
    const auto computer = put(builder, user.computer);
    return values::CreateUser(builder, user.port, host, name, computer, user.session, user.schema,
                              user.softType);
}

Offset<values::Request> put(Builder& builder, const bench::Request& request) {
    const auto name = put(builder, request.name);
    return values::CreateRequest(builder, request.action, request.payloadLength, name,
                                 request.mode);
}

template <class Made, class Record>
Offset<flatbuffers::Vector<Offset<Made>>> put(Builder& builder, std::vector<Offset<Made>>& made,
                                              const bench::Table<Record>& table) {
    made.clear();
    for (const auto& each : table) made.push_back(put(builder, *each));
    return builder.CreateVector(made);
}

void assign(std::u16string& text, const Text& characters) {
    text.resize(characters.size());
    std::memcpy(text.data(), characters.data(), text.size() * sizeof(char16_t));
}

void get(const values::Lock& from, bench::Lock& lock) {
    assign(lock.name, *from.name());
    lock.holders.reserve(from.holders()->size());
    for (const auto* each : *from.holders())
        lock.holders.push_back({each->state(), each->session()});
}

void get(const values::User& from, bench::User& user) {
    user.port = from.port();
    assign(user.host, *from.host());
    assign(user.user, *from.user());
    assign(user.computer, *from.computer());
    user.session = from.session();
    user.schema = from.schema();
    user.softType = from.soft_type();
}

void get(const values::Request& from, bench::Request& request) {
    request.action = from.action();
    request.payloadLength = from.payload_length();
    assign(request.name, *from.name());
    request.mode = from.mode();
}

template <class Made, class Record>
void get(const flatbuffers::Vector<Offset<Made>>& list, bench::Table<Record>& table) {
    table.reserve(list.size());
    for (const auto* from : list) {
        auto each = std::make_unique<Record>();
        get(*from, *each);
        table.push_back(std::move(each));
    }
}

class FlatBuffers {
  public:
    View encode(const bench::Table<bench::Lock>& table) {
        m_builder.Clear();
        return finish(values::CreateLocks(m_builder, put(m_builder, m_locks, table)));
    }
    View encode(const bench::Table<bench::User>& table) {
        m_builder.Clear();
        return finish(values::CreateUsers(m_builder, put(m_builder, m_users, table)));
    }
    View encode(const bench::Request& request) {
        m_builder.Clear();
        return finish(put(m_builder, request));
    }

    static void read(View view, bench::Table<bench::Lock>& table) {
        get(*verified<values::Locks>(view).locks(), table);
    }
    static void read(View view, bench::Table<bench::User>& table) {
        get(*verified<values::Users>(view).users(), table);
    }
    static void read(View view, bench::Request& request) {
        get(verified<values::Request>(view), request);
    }

  private:
    template <class Root>
    View finish(Offset<Root> root) {
        m_builder.Finish(root);
        return {m_builder.GetBufferPointer(), m_builder.GetSize()};
    }
    template <class Root>
    static const Root& verified(View view) {
        flatbuffers::Verifier verifier(view.data, view.size);
        if (!verifier.VerifyBuffer<Root>(nullptr)) throw std::runtime_error("not verified");
        return *flatbuffers::GetRoot<Root>(view.data);
    }

    Builder m_builder{bench::kPeerBytes};
    std::vector<Offset<values::Lock>> m_locks;
    std::vector<Offset<values::User>> m_users;
};

[[maybe_unused]] const bool added = bench::addPeer<FlatBuffers>("flatbuffers");

}  // namespace
