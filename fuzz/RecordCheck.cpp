#include "fuzz/RecordCheck.h"

#include <functional>
#include <memory>

#include "fuzz/HeldMemory.h"
#include "fuzz/Require.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

// The most memory for each byte, as of the smallest records in the largest number; and what an
// exception and an archive take: its lists, and the set of the addresses that it has written, which
// has 4 KiB for each 512 KiB of memory with objects in it.
constexpr size_t kMultiple = 24;
constexpr size_t kOverhead = 4096 + 4 * 4112;

using Record = std::unique_ptr<CObject>;

struct Form {
    std::function<Record(CArchive&)> read;
    std::function<void(CArchive&, CObject&)> write;
};

Form asObject(const CRuntimeClass& recordClass) {
    return {[&](CArchive& ar) { return Record(ar.ReadObject(&recordClass)); },
            [](CArchive& ar, CObject& record) { ar.WriteObject(&record); }};
}

Form asFields(const CRuntimeClass& recordClass, UINT schema) {
    return {[&, schema](CArchive& ar) {
                Record record(recordClass.CreateObject());
                ar.SetObjectSchema(schema);
                record->Serialize(ar);
                return record;
            },
            [schema](CArchive& ar, CObject& record) {
                ar.SetObjectSchema(schema);
                record.Serialize(ar);
            }};
}

struct Loaded {
    Record record;  // null when the bytes were refused, or when they say null
    size_t unreadBytes = 0;
};

Loaded load(const Form& form, const Bytes& bytes) {
    Loading loading(bytes);
    Loaded loaded;
    const HeldMemory held;
    archiveCause([&] { loaded.record = form.read(loading.ar); });
    held.requireAtMost(kMultiple * bytes.size() + kOverhead);
    loaded.unreadBytes = loading.ar.BytesLeft();
    return loaded;
}

Bytes store(const Form& form, CObject& record) {
    return stored([&](CArchive& ar) { form.write(ar, record); });
}

void check(const Form& form, const Bytes& bytes) {
    const Loaded first = load(form, bytes);
    if (first.record == nullptr) return;
    const Bytes written = store(form, *first.record);
    const Loaded again = load(form, written);
    require(again.record != nullptr, "what is written can be read");
    require(again.unreadBytes == 0, "all that is written is read");
    require(store(form, *again.record) == written, "what is read is what was written");

    const auto used = bytes.end() - static_cast<std::ptrdiff_t>(first.unreadBytes);
    const Loaded alone = load(form, Bytes(bytes.begin(), used));
    require(alone.record && store(form, *alone.record) == written, "only the read bytes matter");
}

}  // namespace

void checkRecord(const CRuntimeClass& recordClass, const Bytes& bytes) {
    check(asObject(recordClass), bytes);
    check(asFields(recordClass, VERSIONABLE_SCHEMA | 2015), bytes);
    check(asFields(recordClass, VERSIONABLE_SCHEMA | 2014), bytes);
}
