// Under which schema a user's software type is in an archive.
#include "NyServer/records/NySeUser.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/Golden.h"

namespace {

constexpr char kNoStrings[] = "FFFEFF00 FFFEFF00 FFFEFF00";

TEST(NySeUser, StoresTheSoftTypeFromSchema2015On) {
    const auto storedUnder = [](UINT schema) {
        return toHex(stored([&](CArchive& ar) {
            ar.SetObjectSchema(schema);
            NySeUser().Serialize(ar);
        }));
    };
    const std::string six = std::string("FFFFFFFF") + kNoStrings + "FFFFFFFF 00000000";
    for (const UINT schema : {0u, 1u, 2014u, 0x80000000u, 0x80000000u | 2014u}) {
        EXPECT_EQ(hex(six), storedUnder(schema)) << schema;
    }
    for (const UINT schema : {2015u, 2016u, 0x80000000u | 2015u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(hex(six + "00000000"), storedUnder(schema)) << schema;
    }
}

TEST(NySeUser, OlderSchemaLeavesTheSoftTypeUnchanged) {
    Loading loading(golden("user-plain-schema-2014").bytes);
    loading.ar.SetObjectSchema(2014);
    NySeUser user;
    user.setSoftType(77);
    user.Serialize(loading.ar);
    EXPECT_EQ(77, user.getSoftType());
    EXPECT_EQ(40123, user.getPort());
    EXPECT_EQ(2015, user.getSchema());
    EXPECT_EQ(0u, loading.ar.BytesLeft());
}

TEST(NySeUser, StoredSchemaOfAnObjectDecidesWhatIsRead) {
    Loading loading(fromHex(std::string("FFFF DE07 0800 'NySeUser' 01000000") + kNoStrings +
                            "02000000 03000000 AAAA"));
    const std::unique_ptr<CObject> user(loading.ar.ReadObject(RUNTIME_CLASS(NySeUser)));
    EXPECT_EQ(3, static_cast<NySeUser&>(*user).getSchema());
    EXPECT_EQ(2u, loading.ar.BytesLeft());
}

TEST(NySeUser, SchemaStaysInForceForTheNextRecord) {
    const Bytes bytes = stored([](CArchive& ar) {
        ar.SetObjectSchema(2014);
        NySeUser().Serialize(ar);
        NySeUser().Serialize(ar);
    });
    EXPECT_EQ(2u * 24u, bytes.size());
}

}  // namespace
