// The time to encode and decode records, compared with a floor and memcpy.
//
//   W1/encode/*  W1/decode/*   a table of 10,000 locks, each with a name of 24 characters and 3
//                              holders
//   W2/encode/*  W2/decode/*   a table of 1,000 users, each with 3 names of 10 to 14 characters
//   W3/encode/*  W3/decode/*   one request for a lock
//   .../library                the message file and the records of this library
//   .../library-borrowed       W1 from a table that does not own its locks
//   .../library-after-lock     W1 from an archive that holds a lock before the table
//   .../library-shuffled       W1 from a table whose locks lie in memory in no order
//   .../library-among-4        W1 while three other threads write the same table (not for Windows,
//                              where times are those of a clock)
//   .../library-fresh          W3 with a message file made for each request
//   .../floor                  the same values written and read by hand (FloorCodec.h)
//   .../memcpy                 a copy of as many bytes as the floor writes
//
// Decoding includes the destruction of what was decoded. Each is best run in a process of its own:
// --benchmark_filter='^W1/encode/library$'; ./run-bench does so.
#include <algorithm>
#include <atomic>
#include <functional>
#include <random>
#include <thread>

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

using LockCodec = bench::LibraryCodec<NySeLockArray>;

// The locks of a table, borrowed.
struct BorrowedLocks {
    BorrowedLocks() { bench::fill(m_owner, bench::kLocks); }
    void borrow() {
        for (INT_PTR i = 0; i < m_owner.GetSize(); ++i) m_table.append(m_owner.GetAt(i));
    }
    void borrowShuffled() {
        std::vector<NySeLock*> locks;
        for (INT_PTR i = 0; i < m_owner.GetSize(); ++i) locks.push_back(m_owner.GetAt(i));
        std::shuffle(locks.begin(), locks.end(), std::mt19937(1));
        for (NySeLock* const lock : locks) m_table.append(lock);
    }

    NySeLockArray m_owner;
    NySeLockArray m_table{QoArraySerial2::kDoNotDelete};
};

template <class Arrange>
void addBorrowedLocks(const char* name, Arrange arrange) {
    benchmark::RegisterBenchmark(name, [arrange](auto& state) {
        BorrowedLocks locks;
        (locks.*arrange)();
        LockCodec codec;
        bench::timeEncoding(state, codec, locks.m_table, bench::kLocks);
    });
}

struct LocksAfterALock {
    View encode(const NySeLockArray& table) {
        m_message.startWrite(NySe::schema2015);
        m_message.writeObject(m_first);
        m_message.writeObject(table);
        m_message.stopWriting();
        return LockCodec::whole(m_message);
    }
    NySeLock m_first;
    NySeMemFile m_message;
};

template <class Codec, class Before>
void addLockEncoding(const char* name, Before before) {
    benchmark::RegisterBenchmark(name, [before](auto& state) {
        NySeLockArray table;
        bench::fill(table, bench::kLocks);
        [[maybe_unused]] const auto others = before(table);
        Codec codec;
        bench::timeEncoding(state, codec, table, bench::kLocks);
    });
}

// Threads that write a table until they are destroyed.
class Writers {
  public:
    Writers(const NySeLockArray& table, size_t count) {
        for (; count > 0; --count) {
            m_threads.emplace_back([this, &table] {
                LockCodec codec;
                while (!m_ends) benchmark::DoNotOptimize(codec.encode(table).data);
            });
        }
    }
    ~Writers() {
        m_ends = true;
        for (std::thread& thread : m_threads) thread.join();
    }
    Writers(const Writers&) = delete;
    Writers& operator=(const Writers&) = delete;

  private:
    std::atomic<bool> m_ends{false};
    std::vector<std::thread> m_threads;
};

void addLocks() {
    addBorrowedLocks("W1/encode/library-borrowed", &BorrowedLocks::borrow);
    addBorrowedLocks("W1/encode/library-shuffled", &BorrowedLocks::borrowShuffled);
    addLockEncoding<LocksAfterALock>("W1/encode/library-after-lock", [](const auto&) { return 0; });
    addLockEncoding<LockCodec>("W1/encode/library-among-4", [](const NySeLockArray& table) {
        constexpr size_t others = 3;
        return Writers(table, others);
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
    addLocks();
    addLibrary<NySeUserPtrArray>("W2", bench::kUsers);
    addRequests();
    return bench::runBenchmarks(argc, argv);
}
