// The time to encode and decode records, compared with a floor and memcpy.
//
//   W1/encode/*  W1/decode/*   a table of 10,000 locks, each with a name of 24 characters and 3
//                              holders
//   W2/encode/*  W2/decode/*   a table of 1,000 users, each with 3 names of 10 to 14 characters
//   W3/encode/*  W3/decode/*   one request for a lock
//   .../library                the message file and the records of this library
//   .../library-fresh          W3 with a message file made for each request
//   .../floor                  the same values written and read by hand (FloorCodec.h)
//   .../memcpy                 a copy of as many bytes as the floor writes
//
// Decoding includes the destruction of what was decoded. Each is best run in a process of its own:
// --benchmark_filter='^W1/encode/library$'; ./run-bench does so.
#include <functional>

#include "bench/Measure.h"

namespace {

using bench::View;

// A request as the client sends it.
class RequestCodec {
  public:
    explicit RequestCodec(const bench::Request& request)
        : m_name(bench::textOf(request.name)), m_mode(static_cast<LONG>(request.mode)) {}

    View encode(NySeMemFile& message) {
        message.startWriteAction(NySe::actionLock, NySe::schema2015);
        message.writeString(m_name);
        message.writeInteger(m_mode);
        message.stopWriting();
        return bench::LibraryCodec<NySeLockArray>::whole(message);
    }
    static RequestCodec read(View view) {
        CMemFile file(const_cast<BYTE*>(view.data), static_cast<UINT>(view.size));
        CArchive archive(&file, CArchive::load);
        LONG action = 0;
        LONG length = 0;
        RequestCodec request;
        archive >> action >> length >> request.m_name >> request.m_mode;
        benchmark::DoNotOptimize(action);
        return request;
    }
    static bool restores(View view) {
        NySeMemFile again;
        return read(view).encode(again) == view;
    }

  private:
    RequestCodec() = default;

    CString m_name;
    LONG m_mode = 0;
};

struct ReusedMessage : RequestCodec {
    using RequestCodec::RequestCodec;
    View encode(const bench::Request&) { return RequestCodec::encode(m_message); }
    NySeMemFile m_message;
};

struct FreshMessage : RequestCodec {
    using RequestCodec::RequestCodec;
    View encode(const bench::Request&) {
        NySeMemFile message;
        const View view = RequestCodec::encode(message);
        benchmark::DoNotOptimize(view.data);
        return {nullptr, view.size};
    }
};

template <class Value>
void addFloor(const std::string& workload, const std::function<Value()>& make, size_t records) {
    using Codec = bench::FloorCodec<Value>;
    benchmark::RegisterBenchmark((workload + "/encode/floor").c_str(), [=](auto& state) {
        Codec codec(bench::kFloorBytes);
        bench::timeEncoding(state, codec, make(), records);
    });
    benchmark::RegisterBenchmark((workload + "/decode/floor").c_str(), [=](auto& state) {
        Codec codec(bench::kFloorBytes);
        bench::timeDecoding(state, codec, codec.encode(make()), records);
    });
    for (const char* direction : {"/encode/memcpy", "/decode/memcpy"}) {
        benchmark::RegisterBenchmark((workload + direction).c_str(), [=](auto& state) {
            Codec codec(bench::kFloorBytes);
            bench::timeCopy(state, codec.encode(make()).size, records);
        });
    }
}

template <class Value>
void addLibrary(const std::string& workload, size_t records) {
    using Codec = bench::LibraryCodec<Value>;
    benchmark::RegisterBenchmark((workload + "/encode/library").c_str(), [=](auto& state) {
        Value value;
        bench::fill(value, records);
        Codec codec;
        bench::timeEncoding(state, codec, value, records);
    });
    benchmark::RegisterBenchmark((workload + "/decode/library").c_str(), [=](auto& state) {
        Codec codec;
        View encoded;
        {
            Value value;
            bench::fill(value, records);
            encoded = codec.encode(value);
        }
        bench::timeDecoding(state, codec, encoded, records);
    });
}

template <class Codec>
void addRequestEncoding(const char* name) {
    benchmark::RegisterBenchmark(name, [](auto& state) {
        const bench::Request request = bench::plainRequest();
        Codec codec(request);
        bench::timeEncoding(state, codec, request, 1);
    });
}

void addRequests() {
    addRequestEncoding<ReusedMessage>("W3/encode/library");
    addRequestEncoding<FreshMessage>("W3/encode/library-fresh");
    benchmark::RegisterBenchmark("W3/decode/library", [](auto& state) {
        const bench::Request request = bench::plainRequest();
        ReusedMessage codec(request);
        bench::timeDecoding(state, codec, codec.encode(request), 1);
    });
}

}  // namespace

int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape): an error ends it
    addFloor<bench::Table<bench::Lock>>(
        "W1", [] { return bench::plainLocks(bench::kLocks); }, bench::kLocks);
    addFloor<bench::Table<bench::User>>(
        "W2", [] { return bench::plainUsers(bench::kUsers); }, bench::kUsers);
    addFloor<bench::Request>(
        "W3", [] { return bench::plainRequest(); }, 1);
    addLibrary<NySeLockArray>("W1", bench::kLocks);
    addLibrary<NySeUserPtrArray>("W2", bench::kUsers);
    addRequests();
    return bench::runBenchmarks(argc, argv);
}
