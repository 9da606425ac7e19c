// How replies are taken off a connection: here one that gives what it is told to.
#include "NyServer/framing/NySeReply.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"

namespace {

// Gives at most `atOnce` of the bytes at each read, and notes what it is asked for.
class ReplyReaders : public ::testing::Test {
  protected:
    Bytes m_bytes;
    int m_atOnce = 1 << 20;
    std::vector<int> m_timeOuts;
    int m_mostAsked = 0;
    CMemFile m_file;

    int read(char* buffer, int length, int timeOut) {
        m_timeOuts.push_back(timeOut);
        m_mostAsked = std::max(m_mostAsked, length);
        const int count = std::min({length, m_atOnce, static_cast<int>(m_bytes.size())});
        std::memcpy(buffer, m_bytes.data(), static_cast<size_t>(count));
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + count);
        return count;
    }
    auto reader() {
        return [this](char* buffer, int length, int wait) { return read(buffer, length, wait); };
    }
    void expectMessage(bool isWhole, std::string_view bytes, std::string_view received) {
        m_bytes = fromHex(bytes);
        EXPECT_EQ(isWhole, NySe::receiveMessage(m_file, reader()));
        EXPECT_EQ(hex(received), toHex(contentsOf(m_file)));
    }
};

TEST_F(ReplyReaders, ScalarIsAllOfOneRead) {
    m_bytes = fromHex("00020000 07");
    LONG value = 0;
    EXPECT_TRUE(NySe::receiveScalar(value, reader()));
    EXPECT_EQ(512, value);
    EXPECT_EQ(std::vector<int>{15}, m_timeOuts);
    EXPECT_EQ("07", toHex(m_bytes));
}

TEST_F(ReplyReaders, ScalarInTwoPartsIsMissing) {
    m_bytes = fromHex("00020000");
    m_atOnce = 3;
    LONG value = 0;
    EXPECT_FALSE(NySe::receiveScalar(value, reader()));
    EXPECT_EQ("00", toHex(m_bytes));
}

TEST_F(ReplyReaders, MessageIsItsLengthAndThatManyBytes) {
    expectMessage(true, "03000000 'abc' 'd'", "'abc'");
    EXPECT_EQ((std::vector<int>{15, 30}), m_timeOuts);
    EXPECT_EQ(0u, m_file.GetPosition());
}

TEST_F(ReplyReaders, MessageMayArriveInParts) {
    m_atOnce = 4;
    expectMessage(true, "06000000 'abcdef'", "'abcdef'");
    EXPECT_EQ((std::vector<int>{15, 30, 30}), m_timeOuts);
}

TEST_F(ReplyReaders, MessageThatStopsEarlyKeepsTheBytesReceived) {
    expectMessage(false, "09000000 'abc'", "'abc'");
}

TEST_F(ReplyReaders, LengthOfZeroOrLessIsAnEmptyMessage) {
    expectMessage(true, "00000000 'abc'", "");
    expectMessage(true, "FDFFFFFF 'abc'", "");
    EXPECT_EQ(hex("'abc'"), toHex(m_bytes));
}

TEST_F(ReplyReaders, WithoutALengthThereIsNoMessage) {
    expectMessage(false, "0300", "");
}

// A peer may announce two gigabytes and send one byte.
TEST_F(ReplyReaders, ReceiveInStepsWhateverLengthIsAnnounced) {
    expectMessage(false, "FFFFFF7F 'a'", "'a'");
    EXPECT_LE(m_mostAsked, 2 * NySe::kReceiveStep);
}

template <class File>
void fillFile(File& file, std::string_view bytes) {
    const Bytes content = fromHex(bytes);
    file.Write(content.data(), static_cast<UINT>(content.size()));
    file.SeekToBegin();
}

// The class name of the object that is read where any class will do.
std::string anyRecordIn(std::string_view bytes) {
    CMemFile reply;
    fillFile(reply, bytes);
    const std::unique_ptr<CObject> object(NySe::readReplyObject(reply, nullptr));
    return object ? object->GetRuntimeClass()->m_lpszClassName : "none";
}

TEST(ReplyObject, MayBeAnyRecordOrTable) {
    EXPECT_EQ("NySeSessionLock", anyRecordIn("FFFF DF07 0F00 'NySeSessionLock' 18000000 07000000"));
    EXPECT_EQ("NySeUserPtrArray", anyRecordIn("FFFF DF07 1000 'NySeUserPtrArray' 0000"));
}

// A request or notification carries whatever class the hosts agree on.
TEST(ReplyObject, MayBeOfAHostsOwnClass) {
    EXPECT_EQ("Fixed", anyRecordIn("FFFF 0700 0500 'Fixed' 3412"));
    EXPECT_EQ("OwningArray", anyRecordIn("FFFF 0000 0B00 'OwningArray' 0000"));
    EXPECT_EQ(RUNTIME_CLASS(CStringArray)->m_lpszClassName,
              anyRecordIn("FFFF 0000 0C00 'CStringArray' 0000"));
}

// It would hold objects that nobody owns: memory that any peer could have lost.
TEST(ReplyObject, IsNoArrayOfTheClassLibrary) {
    EXPECT_EQ("none", anyRecordIn("FFFF 0000 0800 'CObArray' 0100 FFFF 0000 0800 'CObArray' 0000"));
    EXPECT_EQ("none", anyRecordIn("FFFF 0000 0800 'CObArray' 0000"));
}

TEST(ReplyObject, IsNoneWithoutAClass) {
    for (const char* bytes : {"0000", "0180", ""}) EXPECT_EQ("none", anyRecordIn(bytes));
}

TEST(ReplyString, LeavesTheReplyWithoutAnArchive) {
    for (const char* content : {"FFFEFF 01 6100", "FFFEFF"}) {
        NySeMemFile reply;
        fillFile(reply, content);
        CString text;
        NySe::readReplyString(reply, text);
        EXPECT_EQ(nullptr, reply.getArchive());
    }
}

}  // namespace
