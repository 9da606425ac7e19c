// What a payload holds: strings, objects, records and tables, down to every field.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NyServer/framing/NySeMemFile.h"
#include "NyServer/records/NySeUser.h"
#include "tests/records/GoldenRecords.h"
#include "tests/wireshark/Talk.h"
#include "tests/wireshark/Wire.h"

namespace {

using ::testing::ElementsAre;

Said sent(const Bytes& object) {
    return asks(request(NySe::actionSendAllUserData, object));
}

// Strings

struct Prefixed {
    std::string prefix;  // in hex
    size_t length;
    size_t width;
};

const std::vector<Prefixed> kStrings = {
    {"FF FE FF 00", 0, 2},
    {"FF FE FF 01", 1, 2},
    {"FF FE FF FE", 254, 2},
    {"FF FE FF FF FF 00", 255, 2},
    {"FF FE FF FF FD FF", 65533, 2},
    {"FF FE FF FF FE FF", 65534, 2},
    {"FF FE FF FF FF FF FE FF 00 00", 65534, 2},
    {"FF FE FF FF FF FF FF FF 00 00", 65535, 2},
    {"00", 0, 1},
    {"01", 1, 1},
    {"FE", 254, 1},
    {"FF FF 00", 255, 1},
    {"FF FD FF", 65533, 1},
    {"FF FF FF FE FF 00 00", 65534, 1},
    {"FF FF FF FF FF 00 00", 65535, 1},
};

std::vector<Said> renamings() {
    std::vector<Said> said;
    for (const Prefixed& one : kStrings) {
        const Bytes character = one.width == 2 ? Bytes{'x', 0} : Bytes{'x'};
        said.push_back(asks(request(NySe::actionUpdateUserName,
                                    fromHex(one.prefix) + repeated(character, one.length))));
    }
    return said;
}
const Talk strings(renamings());

// As tshark shows bytes.
std::string withColons(std::string prefix) {
    for (char& character : prefix) {
        character = character == ' ' ? ':' : static_cast<char>(std::tolower(character));
    }
    return prefix;
}

TEST(WiresharkStrings, HavePrefixesOfEveryLength) {
    ASSERT_EQ(kStrings.size(), strings.messages().size());
    for (size_t i = 0; i < kStrings.size(); ++i) {
        SCOPED_TRACE(kStrings[i].prefix);
        EXPECT_EQ(withColons(kStrings[i].prefix), strings[i]["string.prefix"]);
        EXPECT_EQ(std::to_string(kStrings[i].length), strings[i]["string.length"]);
        EXPECT_EQ(std::to_string(kStrings[i].width), strings[i]["string.width"]);
        EXPECT_EQ(std::string(kStrings[i].length, 'x'), strings[i]["user_name"]);
        EXPECT_FALSE(strings[i].has("malformed"));
    }
}

const Talk oddStrings({
    asks(request(75, fromHex("FF FF FF 00 00 00 80"))),           // 2 GiB
    asks(request(75, fromHex("FF FE FF 03 41 00 42 00"))),        // a character is missing
    asks(request(75, fromHex("FF FE FF FF FF FF FF 00"))),        // the prefix is cut
    asks(request(75, fromHex("FF FE FF 01 41 00 EE"))),           // a byte too many
    asks(request(75, fromHex("05 68 F4 74 65 80"))),              // code page 1252
    asks(request(75, fromHex("FF FE FF 03 AC 20 3D D8 0D DE"))),  // beyond the first 65536
    asks(request(75, fromHex("FF FE FF 02 3D D8 41 00"))),        // half a pair
    asks(request(75, fromHex("FF FE FF 28") +
                         repeated({0xE5, 0x65}, 40))),  // three bytes each in UTF-8
});

TEST(WiresharkStrings, AreMarkedWhereTheyCannotBe) {
    EXPECT_EQ("a string longer than 2,147,483,647 characters", oddStrings[0]["_ws.expert.message"]);
    EXPECT_TRUE(oddStrings[1].has("malformed"));
    EXPECT_EQ("6 bytes are needed here and 4 are left", oddStrings[1]["_ws.expert.message"]);
    EXPECT_TRUE(oddStrings[2].has("malformed"));
    EXPECT_TRUE(oddStrings[3].has("rest"));
    EXPECT_EQ("A", oddStrings[3]["user_name"]);
    EXPECT_EQ("ee", oddStrings[3]["opaque"]);
}

TEST(WiresharkStrings, ShowTheirCharacters) {
    EXPECT_EQ("hôte€", oddStrings[4]["user_name"]);
    EXPECT_EQ("€\U0001F60D", oddStrings[5]["user_name"]);
    EXPECT_FALSE(oddStrings[6].has("malformed"));
    EXPECT_EQ(3u * 40, oddStrings[7]["user_name"].size());
}

// Records and tables

std::vector<Said> goldenObjects() {
    std::vector<Said> said;
    for (const Golden& vector : goldenRecords())
        said.push_back(sent(objectBytes(*makeGolden(vector))));
    return said;
}
const Talk records(&goldenObjects);

// The dissector's fields by the names in the golden file.
const std::map<std::string, std::string> kFieldNames = {
    {"port", "user.port"},
    {"host", "user.host"},
    {"user", "user.name"},
    {"computer", "user.computer"},
    {"schema", "user.schema"},
    {"soft_type", "user.soft_type"},
    {"connection", "connection.name"},
    {"id", "connection.id"},
    {"ref_count", "connection.opens"},
    {"last_id", "connections.last_id"},
    {"free_ids", "connections.free_id"},
    {"name", "lock.name"},
    {"state", "lock.mode"},
    {"message", "message"},
};

std::string shown(const nlohmann::json& value, const std::string& field) {
    if (value.is_string()) return value.get<std::string>();
    if (field != "lock.mode") return value.dump();
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%08x", value.get<unsigned int>());
    return hex;
}

void expectedFields(const nlohmann::json& value, const std::string& name, bool ofHolder,
                    std::map<std::string, Decoded::Values>& fields) {
    if (value.is_object()) {
        const bool isHolder = value.contains("state");
        for (const auto& [key, inner] : value.items()) expectedFields(inner, key, isHolder, fields);
    } else if (value.is_array()) {
        for (const auto& inner : value) expectedFields(inner, name, ofHolder, fields);
    } else if (name == "session") {
        fields[ofHolder ? "holder.session" : "user.session"].push_back(value.dump());
    } else {
        const std::string& field = kFieldNames.at(name);
        fields[field].push_back(shown(value, field));
    }
}

TEST(WiresharkRecords, ShowEveryField) {
    const std::vector<Golden> vectors = goldenRecords();
    ASSERT_EQ(vectors.size(), records.messages().size());
    for (size_t i = 0; i < vectors.size(); ++i) {
        SCOPED_TRACE(vectors[i].name);
        EXPECT_EQ(vectors[i].className, records[i].first("class"));
        EXPECT_FALSE(records[i].has("_ws.expert.message"));
        if (vectors[i].value.empty()) continue;  // all defaults
        std::map<std::string, Decoded::Values> expected;
        expectedFields(vectors[i].value, "", false, expected);
        for (const auto& [field, values] : expected) EXPECT_EQ(values, records[i].all(field));
        for (const auto& [name, field] : kFieldNames)
            EXPECT_EQ(expected.count(field) > 0, records[i].has(field)) << field;
    }
}

TEST(WiresharkRecords, ShowDefaults) {
    const Decoded user = records[0];
    EXPECT_EQ("NySeUser", user["class"]);
    for (const char* field : {"user.port", "user.session"}) EXPECT_EQ("-1", user[field]);
    for (const char* field : {"user.schema", "user.soft_type"}) EXPECT_EQ("0", user[field]);
    for (const char* field : {"user.host", "user.name", "user.computer"})
        EXPECT_EQ("", user[field]);
}

const Talk tables({sent(golden("locks-two").bytes), sent(golden("users-two").bytes)});

TEST(WiresharkRecords, ShowTagsSchemasNumbersAndCounts) {
    const Decoded& locks = tables[0];
    EXPECT_THAT(locks.all("tag"), ElementsAre("new class", "new class", "new class", "class 5",
                                              "class 3", "class 5"));
    EXPECT_THAT(locks.all("class"), ElementsAre("NySeLockArray", "NySeLock", "NySeSessionLock",
                                                "NySeSessionLock", "NySeLock", "NySeSessionLock"));
    EXPECT_THAT(locks.all("class.schema"), ElementsAre("2015", "2015", "2015"));
    EXPECT_THAT(locks.all("class.number"), ElementsAre("1", "3", "5"));
    EXPECT_THAT(locks.all("object.number"), ElementsAre("2", "4", "6", "7", "8", "9"));
    EXPECT_THAT(locks.all("count"), ElementsAre("2", "2", "1"));
    EXPECT_THAT(tables[1].all("class.name_length"), ElementsAre("16", "8"));
}

// Objects

const std::string kTable = "FF FF DF 07 17 00 'NySeSessionLockPtrArray'";
const std::string kHolder = " FF FF DF 07 0F 00 'NySeSessionLock' 01 00 00 00 07 00 00 00";

const Talk references({
    sent(fromHex("00 00")),
    sent(fromHex(kTable + "02 00" + kHolder + "04 00")),
    sent(fromHex(kTable + "02 00" + kHolder + "FF 7F 03 00 00 80 02 00 00 00 08 00 00 00")),
    sent(fromHex(kTable + "02 00" + kHolder + "FF 7F 04 00 00 00")),
    sent(fromHex(kTable + "02 00" + kHolder + "00 00")),
    sent(fromHex(kTable + "FF FF 01 00 00 00" + kHolder)),
});

TEST(WiresharkObjects, MayBeNullOrSeenBefore) {
    EXPECT_EQ("null", references[0]["tag"]);
    EXPECT_THAT(references[1].all("tag"), ElementsAre("new class", "new class", "object 4"));
    EXPECT_THAT(references[1].all("class"),
                ElementsAre("NySeSessionLockPtrArray", "NySeSessionLock", "NySeSessionLock"));
    EXPECT_THAT(references[2].all("tag"), ElementsAre("new class", "new class", "class 3"));
    EXPECT_THAT(references[2].all("holder.session"), ElementsAre("7", "8"));
    EXPECT_THAT(references[3].all("tag"), ElementsAre("new class", "new class", "object 4"));
    for (size_t i = 0; i < 4; ++i) EXPECT_FALSE(references[i].has("_ws.expert.message"));
}

TEST(WiresharkObjects, AreMarkedInATableWhenTheyAreNull) {
    EXPECT_THAT(references[4].all("tag"), ElementsAre("new class", "new class", "null"));
    EXPECT_TRUE(references[4].has("wrong_class"));
}

TEST(WiresharkObjects, MayBeCountedInFourBytes) {
    EXPECT_EQ("1", references[5]["count"]);
    EXPECT_EQ("7", references[5]["holder.session"]);
}

const Talk wrong({
    sent(fromHex("01 00")),                               // no object has this number
    sent(fromHex("01 80")),                               // no class has this number
    sent(fromHex("00 80")),                               // a class of number 0
    sent(fromHex(kTable + "01 00 01 00")),                // an object by a class's number
    sent(fromHex(kTable + "01 00 02 80")),                // a class by an object's number
    sent(fromHex("FF FF DF 07 00 00")),                   // a name of no length
    sent(fromHex("FF FF DF 07 40 00") + Bytes(64, 'N')),  // and one of 64 characters
    sent(fromHex("FF FF DF 07 0B 00 'NySeMess'")),        // a name that is cut
    sent(fromHex(kTable + "FF FF FF FF FF FF")),          // four billion, and none there
    sent(fromHex(kTable + "01 00 FF FF DF 07 0F 00 'NySeSessionLock' 01 00 00 00 07 00 00")),
    sent(fromHex("FF 7F 01 00")),                              // a long tag that is cut
    asks(request(11, fromHex("FF FE FF 01 41 00 18 00 00"))),  // a share mode that is cut
    asks(request(97, fromHex("DF 07"))),
});

TEST(WiresharkObjects, AreMarkedWhereTheyCannotBe) {
    for (size_t i = 0; i < 13; ++i) EXPECT_TRUE(wrong[i].has("malformed")) << i;
    EXPECT_EQ(13u, wrong.messages().size());
}

const Talk foreign({sent(fromHex("FF FF 07 00 03 00 'Foo' 01 02 03")),
                    sent(fromHex("FF FF DF 07 3F 00") + Bytes(63, 'N')),
                    sent(fromHex(kTable + "01 00 FF FF 07 00 03 00 'Foo' 01 02 03"))});

TEST(WiresharkObjects, OfTheApplicationAreNotDecoded) {
    EXPECT_EQ("Foo", foreign[0]["class"]);
    EXPECT_EQ("7", foreign[0]["class.schema"]);
    EXPECT_EQ("01:02:03", foreign[0]["opaque"]);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(foreign[i].has("unknown_class")) << i;
        EXPECT_FALSE(foreign[i].has("malformed")) << i;
    }
}

// A table in a table, this deep.
Bytes nested(size_t depth) {
    Bytes bytes = fromHex("FF FF DF 07 0D 00 'NySeLockArray' 01 00");
    for (size_t i = 2; i < depth; ++i) bytes = bytes + fromHex("01 80 01 00");
    return bytes + fromHex("01 80 00 00");
}
const Talk deep({sent(nested(100)), sent(nested(101))});

TEST(WiresharkObjects, MayBeNestedAsDeepAsAReaderFollows) {
    EXPECT_FALSE(deep[0].has("malformed"));
    EXPECT_EQ(100u, deep[0].all("tag").size());
    EXPECT_TRUE(deep[1].has("malformed"));
}

// Users

NySeUser userOfSchema(LONG schema) {
    NySeUser user;
    user.setStrUserName(_T("Eve"));
    user.setSchema(schema);
    user.setSoftType(9);
    return user;
}

// As a client archives the user that it registers.
Bytes underOwnSchema(const NySeUser& user) {
    NySeMemFile file;
    file.startWrite(NySe::schema2015);
    file.writeObject(user);
    file.stopWriting();
    const Bytes bytes = contentsOf(file.getMemFile());
    return Bytes(bytes.begin() + NySe::kLengthBytes, bytes.end());
}

std::vector<Said> withUsers() {
    return {
        asks(request(96, underOwnSchema(userOfSchema(2014)))),
        answers(golden("reply-user").bytes),
        asks(request(73, underOwnSchema(userOfSchema(2014)) + golden("user-plain-object").bytes)),
        asks(request(73, underOwnSchema(userOfSchema(2016)) + golden("user-plain-object").bytes)),
        asks(request(96, underOwnSchema(userOfSchema(-1)))),
        answers(golden("reply-empty").bytes),
    };
}
const Talk users(&withUsers);

TEST(WiresharkUsers, HaveASoftTypeIfTheirOwnSchemaDoes) {
    EXPECT_EQ("2014", users[0]["user.schema"]);
    EXPECT_FALSE(users[0].has("user.soft_type"));
    EXPECT_EQ("9", users[4]["user.soft_type"]);
    EXPECT_THAT(users[3].all("user.soft_type"), ElementsAre("9", "3"));
    EXPECT_THAT(users[2].all("user.soft_type"), ElementsAre("3"));
    EXPECT_EQ("sendUserData to Eve NySeUser Anna", users.line(2));
    for (size_t i = 0; i < 6; ++i) EXPECT_FALSE(users[i].has("_ws.expert.message")) << i;
}

TEST(WiresharkUsers, AreNumberedApartFromTheObjectAfterThem) {
    EXPECT_THAT(users[2].all("tag"), ElementsAre("new class", "new class"));
    EXPECT_THAT(users[2].all("class.number"), ElementsAre("1", "1"));
}

}  // namespace
