// How much memory a read takes, and what happens when there is none.
#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/records/GoldenRecords.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

// Bytes held at one time for each byte read, and for the exception and the archive's own lists.
constexpr size_t kMultiple = 24;
constexpr size_t kOverhead = 1024;

// The most memory held while the bytes are read, which may fail.
size_t memoryToRead(const Golden& vector, Bytes bytes) {
    Loading loading(std::move(bytes));
    const AllocationCount count;
    archiveCause([&] {
        if (vector.form == "object") {
            const std::unique_ptr<CObject> object(loading.ar.ReadObject(nullptr));
        } else {
            const std::unique_ptr<CObject> object(
                CRuntimeClass::FromName(vector.className.c_str())->CreateObject());
            object->Serialize(loading.ar);
        }
    });
    return count.peakBytes();
}

class RecordMemory : public ::testing::TestWithParam<Golden> {};

TEST_P(RecordMemory, IsBoundedByTheBytesPresentWhateverTheyAnnounce) {
    const Bytes& whole = GetParam().bytes;
    for (size_t i = 0; i < whole.size(); ++i) {
        for (const char* damage : {"FF", "FFFF", "FFFFFF7F", "FFFFFFFFFFFF", "FFFFFEFFFF7F"}) {
            Bytes bytes = whole;
            const Bytes overlay = fromHex(damage);
            for (size_t k = 0; k < overlay.size() && i + k < bytes.size(); ++k) {
                bytes[i + k] = overlay[k];
            }
            EXPECT_LE(memoryToRead(GetParam(), bytes), kMultiple * whole.size() + kOverhead)
                << "byte " << i << ", " << damage;
        }
    }
}

TEST_P(RecordMemory, MissingAnywhereInAReadIsToldAndLeavesNothing) {
    for (size_t allocations = 0;; ++allocations) {
        Loading loading(GetParam().bytes);
        if (GetParam().form != "object") return;
        AllocationCount count;
        count.failAfter(allocations);
        try {
            const std::unique_ptr<CObject> object(loading.ar.ReadObject(nullptr));
            ASSERT_FALSE(count.hasFailed());
            break;
        } catch (const std::bad_alloc&) {
            ASSERT_TRUE(count.hasFailed());
        } catch (CMemoryException* error) {
            error->Delete();
            ASSERT_TRUE(count.hasFailed());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Vectors, RecordMemory, ::testing::ValuesIn(goldenRecords()),
                         [](const auto& vector) {
                             std::string name = vector.param.name;
                             for (char& c : name) c = c == '-' ? '_' : c;
                             return name;
                         });

TEST(RecordMemory, MissingAnywhereInACloneGivesNull) {
    NySeUserPtrArray users;
    for (int i = 0; i < 3; ++i) {
        NySeUser user;
        user.setStrUserName(CString(_T("a name too long to lie inside the object")));
        users.append(user.clone());
    }
    for (size_t allocations = 0;; ++allocations) {
        AllocationCount count;
        count.failAfter(allocations);
        const std::unique_ptr<NySeUserPtrArray> clone(users.clone());
        ASSERT_EQ(count.hasFailed(), clone == nullptr);
        if (clone != nullptr) break;
    }
}

}  // namespace
