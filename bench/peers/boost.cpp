// Boost.Serialization: binary archives without their header, over a stream buffer that is reused.
//
//   .../boost         its default traits: class numbers, and object numbers of pointers
//   .../boost-tuned   by value: no class information, no tracking, the holders as one block
//
// The library does not know strings of this character type: a length and a block of bytes.
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/binary_object.hpp>
#include <boost/serialization/level.hpp>
#include <boost/serialization/split_free.hpp>
#include <boost/serialization/tracking.hpp>
#include <boost/serialization/unique_ptr.hpp>
#include <boost/serialization/vector.hpp>

#include "bench/peers/FixedStreams.h"
#include "bench/peers/Peers.h"

namespace {

// A record to be written or read in its place.
template <class Record>
struct ByValue {
    Record& record;
};

}  // namespace

BOOST_CLASS_IMPLEMENTATION(std::u16string, boost::serialization::object_serializable)
BOOST_CLASS_TRACKING(std::u16string, boost::serialization::track_never)
BOOST_SERIALIZATION_SPLIT_FREE(std::u16string)

namespace boost::serialization {

template <class Record>
struct implementation_level<ByValue<Record>> {
    using tag = mpl::integral_c_tag;
    using type = mpl::int_<object_serializable>;
    static constexpr int value = object_serializable;
};

template <class Record>
struct tracking_level<ByValue<Record>> {
    using tag = mpl::integral_c_tag;
    using type = mpl::int_<track_never>;
    static constexpr int value = track_never;
};

template <class Archive>
void save(Archive& archive, const std::u16string& text, unsigned) {
    const auto length = static_cast<uint32_t>(text.size());
    archive << length;
    archive.save_binary(text.data(), length * sizeof(char16_t));
}
template <class Archive>
void load(Archive& archive, std::u16string& text, unsigned) {
    uint32_t length = 0;
    archive >> length;
    text.resize(length);
    archive.load_binary(text.data(), length * sizeof(char16_t));
}

template <class Archive, class... Fields>
void fields(Archive& archive, Fields&... each) {
    (archive & ... & each);
}

template <class Archive>
void serialize(Archive& archive, bench::Holder& holder, unsigned) {
    fields(archive, holder.state, holder.session);
}
template <class Archive>
void serialize(Archive& archive, bench::Lock& lock, unsigned) {
    fields(archive, lock.name, lock.holders);
}
template <class Archive>
void serialize(Archive& archive, bench::User& user, unsigned) {
    fields(archive, user.port, user.host, user.user, user.computer, user.session, user.schema,
           user.softType);
}
template <class Archive>
void serialize(Archive& archive, bench::Request& request, unsigned) {
    fields(archive, request.action, request.payloadLength, request.name, request.mode);
}

template <class Archive>
void serialize(Archive& archive, ByValue<bench::Lock>& lock, unsigned) {
    auto count = static_cast<uint32_t>(lock.record.holders.size());
    fields(archive, lock.record.name, count);
    lock.record.holders.resize(count);  // nothing to do in writing
    const auto block =
        make_binary_object(lock.record.holders.data(), count * sizeof(bench::Holder));
    fields(archive, block);
}
template <class Archive, class Record>
void serialize(Archive& archive, ByValue<Record>& each, unsigned version) {
    serialize(archive, each.record, version);
}

}  // namespace boost::serialization

namespace {

using bench::View;

constexpr unsigned kFlags = boost::archive::no_header | boost::archive::no_codecvt;

struct DefaultTraits {
    template <class Archive, class Value>
    static void write(Archive& archive, const Value& value) {
        archive << value;
    }
    template <class Archive, class Value>
    static void read(Archive& archive, Value& value) {
        archive >> value;
    }
};

struct Tuned {
    template <class Archive, class Record>
    static void write(Archive& archive, const Record& record) {
        const ByValue<Record> place{const_cast<Record&>(record)};
        archive << place;
    }
    template <class Archive, class Record>
    static void write(Archive& archive, const bench::Table<Record>& table) {
        archive << static_cast<uint32_t>(table.size());
        for (const auto& each : table) write(archive, *each);
    }
    template <class Archive, class Record>
    static void read(Archive& archive, Record& record) {
        ByValue<Record> place{record};
        archive >> place;
    }
    template <class Archive, class Record>
    static void read(Archive& archive, bench::Table<Record>& table) {
        uint32_t count = 0;
        archive >> count;
        table.reserve(count);
        for (uint32_t i = 0; i < count; ++i) {
            auto each = std::make_unique<Record>();
            read(archive, *each);
            table.push_back(std::move(each));
        }
    }
};

template <class Traits>
class Boost {
  public:
    template <class Value>
    View encode(const Value& value) {
        m_output.rewind();
        boost::archive::binary_oarchive archive(m_output, kFlags);
        Traits::write(archive, value);
        return m_output.view();
    }
    template <class Value>
    void read(View view, Value& value) {
        m_input.open(view);
        boost::archive::binary_iarchive archive(m_input, kFlags);
        Traits::read(archive, value);
    }

  private:
    bench::FixedOutput m_output;
    bench::FixedInput m_input;
};

[[maybe_unused]] const bool added = bench::addPeer<Boost<DefaultTraits>>("boost");
[[maybe_unused]] const bool tunedAdded = bench::addPeer<Boost<Tuned>>("boost-tuned");

}  // namespace
