// Cap'n Proto:
//
//   .../capnproto   built in a first segment that is reused, then copied into one block; read in
//                   place, with its usual limits, into the table
#include <capnp/message.h>
#include <capnp/serialize.h>
#include <values.capnp.h>

#include "bench/peers/Peers.h"

namespace {

namespace values = capnproto_values;
using bench::View;

capnp::Data::Reader bytesOf(const std::u16string& text) {
    return {reinterpret_cast<const kj::byte*>(text.data()), text.size() * sizeof(char16_t)};
}

void assign(std::u16string& text, capnp::Data::Reader bytes) {
    text.resize(bytes.size() / sizeof(char16_t));
    std::memcpy(text.data(), bytes.begin(), text.size() * sizeof(char16_t));
}

void put(values::Lock::Builder to, const bench::Lock& lock) {
    to.setName(bytesOf(lock.name));
    auto holders = to.initHolders(static_cast<unsigned>(lock.holders.size()));
    unsigned at = 0;
    for (const bench::Holder& each : lock.holders) {
        auto holder = holders[at++];
        holder.setState(each.state);
        holder.setSession(each.session);
    }
}

void put(values::User::Builder to, const bench::User& user) {
    to.setPort(user.port);
    to.setHost(bytesOf(user.host));
    to.setUser(bytesOf(user.user));
    to.setComputer(bytesOf(user.computer));
    to.setSession(user.session);
    to.setSchema(user.schema);
    to.setSoftType(user.softType);
}

void put(values::Request::Builder to, const bench::Request& request) {
    to.setAction(request.action);
    to.setPayloadLength(request.payloadLength);
    to.setName(bytesOf(request.name));
    to.setMode(request.mode);
}

template <class List, class Record>
void put(List list, const bench::Table<Record>& table) {
    unsigned at = 0;
    for (const auto& each : table) put(list[at++], *each);
}

void get(values::Lock::Reader from, bench::Lock& lock) {
    assign(lock.name, from.getName());
    const auto holders = from.getHolders();
    lock.holders.reserve(holders.size());
    for (const auto each : holders) lock.holders.push_back({each.getState(), each.getSession()});
}

void get(values::User::Reader from, bench::User& user) {
    user.port = from.getPort();
    assign(user.host, from.getHost());
    assign(user.user, from.getUser());
    assign(user.computer, from.getComputer());
    user.session = from.getSession();
    user.schema = from.getSchema();
    user.softType = from.getSoftType();
}

void get(values::Request::Reader from, bench::Request& request) {
    request.action = from.getAction();
    request.payloadLength = from.getPayloadLength();
    assign(request.name, from.getName());
    request.mode = from.getMode();
}

template <class List, class Record>
void get(List list, bench::Table<Record>& table) {
    table.reserve(list.size());
    for (const auto from : list) {
        auto each = std::make_unique<Record>();
        get(from, *each);
        table.push_back(std::move(each));
    }
}

class CapnProto {
  public:
    View encode(const bench::Table<bench::Lock>& table) {
        return build<values::Locks>(
            [&](auto root) { put(root.initLocks(static_cast<unsigned>(table.size())), table); });
    }
    View encode(const bench::Table<bench::User>& table) {
        return build<values::Users>(
            [&](auto root) { put(root.initUsers(static_cast<unsigned>(table.size())), table); });
    }
    View encode(const bench::Request& request) {
        return build<values::Request>([&](auto root) { put(root, request); });
    }

    static void read(View view, bench::Table<bench::Lock>& table) {
        capnp::FlatArrayMessageReader message(wordsOf(view));
        get(message.getRoot<values::Locks>().getLocks(), table);
    }
    static void read(View view, bench::Table<bench::User>& table) {
        capnp::FlatArrayMessageReader message(wordsOf(view));
        get(message.getRoot<values::Users>().getUsers(), table);
    }
    static void read(View view, bench::Request& request) {
        capnp::FlatArrayMessageReader message(wordsOf(view));
        get(message.getRoot<values::Request>(), request);
    }

  private:
    static constexpr size_t kWords = bench::kPeerBytes / sizeof(capnp::word);

    template <class Root, class Fill>
    View build(Fill fill) {
        capnp::MallocMessageBuilder message(kj::arrayPtr(m_segment.data(), m_segment.size()));
        fill(message.initRoot<Root>());
        kj::ArrayOutputStream output(
            kj::arrayPtr(reinterpret_cast<kj::byte*>(m_output.data()), bench::kPeerBytes));
        capnp::writeMessage(output, message);
        return {output.getArray().begin(), output.getArray().size()};
    }
    // REQUIRES: the view begins at the start of an allocated block, which is aligned for words.
    static kj::ArrayPtr<const capnp::word> wordsOf(View view) {
        return kj::arrayPtr(reinterpret_cast<const capnp::word*>(view.data),
                            view.size / sizeof(capnp::word));
    }

    // A copy between blocks that lie nearly whole pages apart takes a third longer.
    static constexpr size_t kApart = 200;

    // The builder wants the segment zeroed, and leaves it so.
    std::vector<capnp::word> m_segment = std::vector<capnp::word>(kWords + kApart);
    std::vector<capnp::word> m_output = std::vector<capnp::word>(kWords);
};

[[maybe_unused]] const bool added = bench::addPeer<CapnProto>("capnproto");

}  // namespace
