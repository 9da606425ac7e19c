// Every record against its golden bytes, in both directions, and against damaged ones.
#include "tests/records/GoldenRecords.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

class GoldenRecord : public ::testing::TestWithParam<Golden> {
  protected:
    // The cause with which reading these bytes ends, -1 for none.
    static int load(const Bytes& bytes) {
        return archiveCause([&] { loadAs(GetParam(), bytes); });
    }
};

TEST_P(GoldenRecord, IsStoredAsItsBytes) {
    EXPECT_EQ(toHex(GetParam().bytes), toHex(storeAs(GetParam(), *makeGolden(GetParam()))));
}

TEST_P(GoldenRecord, IsLoadedFromItsBytesAndNoMore) {
    const std::unique_ptr<CObject> loaded = loadAs(GetParam(), GetParam().bytes + Bytes{0xAB});
    EXPECT_STREQ(GetParam().className.c_str(), loaded->GetRuntimeClass()->m_lpszClassName);
    EXPECT_EQ(toHex(GetParam().bytes), toHex(storeAs(GetParam(), *loaded)));
}

TEST_P(GoldenRecord, CutAnywhereEndsTooEarly) {
    const Bytes& whole = GetParam().bytes;
    for (size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(CArchiveException::endOfFile, load(cut)) << length << " bytes";
    }
}

TEST_P(GoldenRecord, DamagedAnywhereLoadsOrIsRefused) {
    for (size_t i = 0; i < GetParam().bytes.size(); ++i) {
        for (const int damage : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFF, 0x7F}) {
            Bytes bytes = GetParam().bytes;
            bytes[i] = static_cast<unsigned char>(bytes[i] ^ damage);
            const int cause = load(bytes);
            EXPECT_TRUE(cause == -1 || cause == CArchiveException::endOfFile ||
                        cause == CArchiveException::badIndex ||
                        cause == CArchiveException::badClass)
                << "byte " << i << " ^ " << damage << ": " << cause;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Vectors, GoldenRecord, ::testing::ValuesIn(goldenRecords()),
                         [](const auto& vector) { return testNameOf(vector.param); });

}  // namespace
