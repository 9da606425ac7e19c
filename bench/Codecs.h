// The codecs that are compared, each with the same two operations:
//   View encode(value)            one block of bytes, valid until the next call
//   read(View)                    makes a fresh value from them
//   bool restores(View)           the value that is read encodes as the same bytes
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench/FloorCodec.h"
#include "NyServer/framing/NySeMemFile.h"

namespace bench {

struct View {
    const unsigned char* data = nullptr;
    size_t size = 0;

    friend bool operator==(View one, View other) {
        return std::equal(one.data, one.data + one.size, other.data, other.data + other.size);
    }
};

template <class Value>
class FloorCodec {
  public:
    explicit FloorCodec(size_t capacity) : m_buffer(capacity) {}

    View encode(const Value& value) {
        FloorWriter writer(m_buffer.data());
        writer.record(value);
        return {m_buffer.data(), static_cast<size_t>(writer.end() - m_buffer.data())};
    }
    static Value read(View view) {
        Value value;
        FloorReader reader(view.data, view.data + view.size);
        reader.record(value);
        return value;
    }
    static bool restores(View view) {
        FloorCodec again(view.size);
        return again.encode(read(view)) == view;
    }

  private:
    std::vector<unsigned char> m_buffer;
};

// A table as in the central server's reply: one object in a reused message file.
template <class Value>
class LibraryCodec {
  public:
    View encode(const Value& value) {
        m_message.startWrite(NySe::schema2015);
        m_message.writeObject(value);
        m_message.stopWriting();
        return whole(m_message);
    }
    static std::unique_ptr<CObject> read(View view) {
        CMemFile file(const_cast<BYTE*>(view.data), static_cast<UINT>(view.size));
        file.Seek(NySe::kLengthBytes, CFile::begin);
        CArchive archive(&file, CArchive::load);
        return std::unique_ptr<CObject>(archive.ReadObject(RUNTIME_CLASS(Value)));
    }
    static bool restores(View view) {
        LibraryCodec again;
        return again.encode(static_cast<const Value&>(*read(view))) == view;
    }

    // The bytes of a finished message.
    static View whole(NySeMemFile& message) {
        void* start = nullptr;
        void* end = nullptr;
        const UINT size =
            message.GetBufferPtr(CFile::bufferRead, static_cast<UINT>(-1), &start, &end);
        message.SeekToBegin();
        return {static_cast<const unsigned char*>(start), size};
    }

  private:
    NySeMemFile m_message;
};

}  // namespace bench
