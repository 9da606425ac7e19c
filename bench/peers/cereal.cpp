// cereal:
//
//   .../cereal   binary archives over a stream and a stream buffer that are reused
#include <istream>
#include <ostream>

#include <cereal/archives/binary.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>

#include "bench/peers/FixedStreams.h"
#include "bench/peers/Peers.h"

namespace bench {

template <class Archive>
void serialize(Archive& archive, Holder& holder) {
    archive(holder.state, holder.session);
}
template <class Archive>
void serialize(Archive& archive, Lock& lock) {
    archive(lock.name, lock.holders);
}
template <class Archive>
void serialize(Archive& archive, User& user) {
    archive(user.port, user.host, user.user, user.computer, user.session, user.schema,
            user.softType);
}
template <class Archive>
void serialize(Archive& archive, Request& request) {
    archive(request.action, request.payloadLength, request.name, request.mode);
}

}  // namespace bench

namespace {

using bench::View;

class Cereal {
  public:
    template <class Value>
    View encode(const Value& value) {
        m_output.rewind();
        cereal::BinaryOutputArchive archive(m_outputStream);
        archive(value);
        return m_output.view();
    }
    template <class Value>
    void read(View view, Value& value) {
        m_input.open(view);
        cereal::BinaryInputArchive archive(m_inputStream);
        archive(value);
    }

  private:
    bench::FixedOutput m_output;
    bench::FixedInput m_input;
    std::ostream m_outputStream{&m_output};
    std::istream m_inputStream{&m_input};
};

[[maybe_unused]] const bool added = bench::addPeer<Cereal>("cereal");

}  // namespace
