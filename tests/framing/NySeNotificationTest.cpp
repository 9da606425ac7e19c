#include "NyServer/framing/NySeNotification.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"

namespace {

// The action and the payload found in the bytes.
std::string found(std::string_view text) {
    Bytes bytes = fromHex(text);
    const NySe::FoundNotification one = NySe::findNotification(bytes.data(), bytes.size());
    return std::to_string(one.action) + ": " + toHex(Bytes(one.payload, one.payload + one.length));
}

std::string wrapped(NySe::ActionType action, std::string_view content) {
    CMemFile body;
    const Bytes bytes = fromHex(content);
    body.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    NySeMemFile message;
    NySe::wrapNotification(message, action, body);
    EXPECT_EQ(0u, body.GetLength());
    EXPECT_EQ(NySe::schema2015, message.getSchemaType());
    return toHex(contentsOf(message));
}

TEST(NotificationBytes, IsWrappedWithItsActionAndLengthUnderTheCurrentSchema) {
    EXPECT_EQ(hex("32000000 02000000 'ab'"), wrapped(NySe::actionFirstNotification, "'ab'"));
    EXPECT_EQ(hex("3A000000 00000000"), wrapped(NySe::actionLastNotification, ""));
}

TEST(NotificationBytes, IsFoundWithItsPayload) {
    EXPECT_EQ("50: " + hex("'ab'"), found("32000000 02000000 'ab'"));
    EXPECT_EQ("58: ", found("3A000000 00000000"));
}

TEST(NotificationBytes, PayloadEndsWithTheBytes) {
    EXPECT_EQ("50: " + hex("'ab'"), found("32000000 FFFFFF7F 'ab'"));
    EXPECT_EQ("50: " + hex("'a'"), found("32000000 01000000 'ab'"));
    EXPECT_EQ("50: ", found("32000000 FFFFFFFF 'ab'"));
}

TEST(NotificationBytes, OtherActionsAndLessThanAHeaderAreNone) {
    for (const char* bytes :
         {"31000000 02000000 'ab'", "3B000000 02000000 'ab'", "32000000 000000", ""}) {
        EXPECT_EQ("-1: ", found(bytes)) << bytes;
    }
}

}  // namespace
