#include "apps/central/Reply.h"

#include <gtest/gtest.h>

namespace {

const std::string kEmptyMessage(4, '\0');

TEST(CentralReply, AMessageIsItsLengthAndItsBytes) {
    Reply reply;
    reply.message("abc");
    EXPECT_EQ(std::string("\3\0\0\0abc", 7), reply.bytes());
}

TEST(CentralReply, AMessageWhoseLengthCannotBeAnnouncedIsEmpty) {
    for (const size_t length : {size_t{1} << 31, (size_t{1} << 32) + 1}) {
        Reply reply;
        reply.message(std::string_view("not looked at", length));
        EXPECT_EQ(kEmptyMessage, reply.bytes()) << length;
    }
}

}  // namespace
