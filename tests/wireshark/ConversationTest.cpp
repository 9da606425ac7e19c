// Requests and their replies, notifications and probes, found in a capture and matched to each
// other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "NyServer/records/NySeShareMode.h"
#include "tests/wireshark/Talk.h"
#include "tests/wireshark/Wire.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A reply of the kind that the document says; its byte is 1, its numbers are 512 and 1.5.
Bytes replyOf(const std::string& kind) {
    const std::pair<const char*, const char*> messages[] = {
        {"message: string", "reply-string"},
        {"message: `NySeUser`", "reply-user"},
        {"message: `NySeUserPtrArray`", "reply-users"},
        {"message: `NySeLockArray`", "reply-locks"},
        {"message: `NySeConnectionArray`", "reply-connections"}};
    Bytes reply;
    if (kind.starts_with("u8")) reply = wireOf<BYTE>(1);
    if (kind.starts_with("i32")) reply = kAlive;
    if (kind.starts_with("f64")) reply = wireOf(1.5);
    for (const auto& [words, name] : messages)
        if (kind.ends_with(words)) reply = reply + golden(name).bytes;
    return reply;
}

// The last column of the request's row in docs/wire-format.md.
std::string replyInDocument(const NySe::RequestKind& request) {
    std::ifstream document(NY_TEST_DATA "/../../docs/wire-format.md");
    const std::string start = "| " + std::to_string(request.action) + " | `" + request.name + "` |";
    for (std::string line; std::getline(document, line);) {
        if (!line.starts_with(start)) continue;
        const size_t column = line.rfind('|', line.rfind('|') - 1) + 2;
        return line.substr(column, line.rfind('|') - 1 - column);
    }
    return "";
}

// Every request with the reply that it gets.
std::vector<Said> wholeSession() {
    std::vector<Said> said;
    for (const NySe::RequestKind& request : NySe::kRequests) {
        said.push_back(asks(goldenRequest(request.name)));
        const Bytes reply = replyOf(replyInDocument(request));
        if (!reply.empty()) said.push_back(answers(reply));
    }
    return said;
}

const Talk session(wholeSession(), Talk::On::anyPort);

TEST(WiresharkConversation, DecodesEveryRequestAndItsDocumentedReply) {
    for (const NySe::RequestKind& request : NySe::kRequests)
        EXPECT_NE("", replyInDocument(request)) << request.name;
    EXPECT_THAT(
        session.lines(),
        ElementsAre(
            "isAlive", "isAlive: alive", "getConnection", "getConnection: NySeConnectionArray 2",
            "openConnection \"Server=a;Db=b\"", "openConnection: 512", "closeConnection 3",
            "isOpenConnectionBy 3", "isOpenConnectionBy: NySeUserPtrArray 2", "getLock",
            "getLock: NySeLockArray 2", "lock \"part/42\" 0x18", "lock: granted",
            "unLock \"part/42\"", "isLockBy \"part/42\"", "isLockBy: held, NySeUserPtrArray 2",
            "getAllUser", "getAllUser: NySeUserPtrArray 2", "getAnotherPort", "getAnotherPort: 512",
            "sendConnectionData 1 2 NySeMessage saved", "sendUserData to Anna NySeMessage saved",
            "sendAllUserData NySeMessage saved", "updateUserName \"Anna\"", "updateUserName: done",
            "shutDownServer", "getCurrentTime", "getCurrentTime: 512", "verifyCoherancy",
            "getMachineIdentifiant", "getMachineIdentifiant: \"00-1a-2b-3c-4d-5e\"",
            "getEventListFromEventViewer 25", "getEventListFromEventViewer: \"00-1a-2b-3c-4d-5e\"",
            "getPortClient Anna", "getPortClient: NySeUser Anna", "initializeSchema 2015",
            "initializeSchema: 512", "getVersion", "getVersion: 1.5", "disconnect"));
    for (const Decoded& one : session.messages()) EXPECT_FALSE(one.has("_ws.expert.message"));
}

Bytes lockUnder(unsigned mode) {
    Bytes bytes = goldenRequest("lock");
    bytes.resize(bytes.size() - sizeof(DWORD));
    return bytes + wireOf<DWORD>(mode);
}

std::vector<Said> lockUnderEachBit() {
    std::vector<Said> said;
    for (const NySe::ShareModeBit& bit : NySe::kShareModeBits)
        said.push_back(asks(lockUnder(bit.bit)));
    return said;
}

const Talk shareModes(lockUnderEachBit());

TEST(WiresharkConversation, ShowsEachBitOfAShareMode) {
    for (size_t i = 0; i < std::size(NySe::kShareModeBits); ++i) {
        for (const NySe::ShareModeBit& bit : NySe::kShareModeBits) {
            const bool isSet = bit.bit == NySe::kShareModeBits[i].bit;
            EXPECT_EQ(isSet ? "1" : "0", shareModes[i][std::string("lock.mode.") + bit.word]);
        }
    }
}

TEST(WiresharkConversation, ShowsTheFieldsOfRequestsAndReplies) {
    const struct {
        size_t message;
        const char* field;
        const char* value;
    } rows[] = {{11, "action", "11"},
                {11, "request", "1"},
                {11, "length", "22"},
                {11, "lock.name", "part/42"},
                {11, "lock.mode", "0x00000018"},
                {14, "zero", "0"},
                {20, "data.first", "1"},
                {20, "data.second", "2"},
                {31, "event_count", "25"},
                {23, "user_name", "Anna"},
                {35, "schema", "2015"},
                {1, "reply.number", "512"},
                {12, "reply.byte", "1"},
                {12, "length", "(none)"},
                {15, "reply.byte", "1"},
                {27, "reply.number", "512"},
                {30, "reply.text", "00-1a-2b-3c-4d-5e"},
                {30, "length", "38"},
                {38, "reply.version", "1.5"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.value, session[row.message][row.field]) << row.message << row.field;
    }
    EXPECT_NE(std::string::npos, session[27]["reply.server_time"].find("Jan  1, 1970 00:08:32"));
    EXPECT_THAT(session[15].all("user.name"), ElementsAre("Anna", "bob"));
}

TEST(WiresharkConversation, LinksRequestAndReply) {
    const int requestFrame = std::stoi(session[1]["request_in"]);
    EXPECT_EQ(std::to_string(requestFrame + 1), session[0]["reply_in"]);
    EXPECT_EQ(std::to_string(requestFrame + 2), session[3]["request_in"]);
    EXPECT_NEAR(0.001, std::stod(session[1]["reply.time"]), 1e-6);
    EXPECT_EQ("1", session[1]["action"]);
    EXPECT_FALSE(session[6].has("reply_in"));
}

Bytes joined(const std::vector<Said>& said, bool asks) {
    Bytes bytes;
    for (const Said& one : said) {
        if (one.asks == asks) bytes = bytes + one.bytes;
    }
    return bytes;
}

std::vector<Said> allAtOnce() {
    return {asks(joined(wholeSession(), true)), answers(joined(wholeSession(), false))};
}

const Talk pipelined(allAtOnce());

// Without the frames, which depend on how it was sent, and the times.
std::vector<std::map<std::string, Decoded::Values>> contents(const Talk& talk, bool ofRequests) {
    std::vector<std::map<std::string, Decoded::Values>> found;
    for (const Decoded& one : talk.messages()) {
        if (one.has("request") != ofRequests) continue;
        found.push_back(one.fields());
        for (const char* name : {"reply_in", "request_in", "reply.time"}) found.back().erase(name);
    }
    return found;
}

void expectSameAsSession(const Talk& talk) {
    EXPECT_EQ(contents(session, true), contents(talk, true));
    EXPECT_EQ(contents(session, false), contents(talk, false));
}

TEST(WiresharkConversation, FindsManyMessagesInOneSegment) {
    EXPECT_EQ(2u, pipelined.lines().size());
    expectSameAsSession(pipelined);
}

const Talk inSegments[] = {
    Talk{wholeSession(), Talk::On::serverPort, 1}, Talk{wholeSession(), Talk::On::serverPort, 2},
    Talk{wholeSession(), Talk::On::serverPort, 5}, Talk{wholeSession(), Talk::On::anyPort, 17},
    Talk{allAtOnce(), Talk::On::anyPort, 100}};

TEST(WiresharkConversation, ReassemblesMessagesFromSegments) {
    for (const Talk& talk : inSegments) expectSameAsSession(talk);
}

// Replies that say no, and those of a server that is not well.
const Talk unlucky({asks(goldenRequest("lock")), answers(wireOf<BYTE>(0)),
                    asks(goldenRequest("isLockBy")), answers(wireOf<BYTE>(0)),
                    asks(goldenRequest("isLockBy")), answers(wireOf<BYTE>(2)),
                    asks(goldenRequest("getPortClient")), answers(golden("reply-empty").bytes),
                    asks(goldenRequest("getLock")), answers(wireOf<LONG>(-3)),
                    asks(goldenRequest("isAlive")), answers(wireOf<LONG>(511)),
                    asks(goldenRequest("getLock")), answers(golden("reply-users").bytes),
                    asks(goldenRequest("openConnection")), answers(wireOf<LONG>(-1))});

TEST(WiresharkConversation, ShowsRepliesThatRefuse) {
    EXPECT_EQ("lock: refused", unlucky.line(1));
    EXPECT_EQ("isLockBy: not held", unlucky.line(3));
    EXPECT_EQ("isLockBy: held", unlucky.line(5));
    EXPECT_EQ("getPortClient: nothing", unlucky.line(7));
    EXPECT_EQ("openConnection: -1", unlucky.line(15));
}

TEST(WiresharkConversation, ReadsANegativeLengthOfAReplyAsEmpty) {
    EXPECT_EQ("-3", unlucky[9]["length"]);
    EXPECT_TRUE(unlucky[9].has("negative_length"));
    EXPECT_EQ("getLock: nothing", unlucky.line(9));
}

TEST(WiresharkConversation, MarksWhatAClientRejects) {
    EXPECT_TRUE(unlucky[11].has("not_alive"));
    EXPECT_TRUE(unlucky[13].has("wrong_class"));
    EXPECT_FALSE(unlucky[1].has("_ws.expert.message"));
}

const Talk unknownAction({asks(request(5, {1, 2, 3}) + goldenRequest("isAlive")), answers(kAlive)});

TEST(WiresharkConversation, SkipsAnUnknownAction) {
    EXPECT_TRUE(unknownAction[0].has("unknown_action"));
    EXPECT_EQ("01:02:03", unknownAction[0]["opaque"]);
    EXPECT_EQ("1", unknownAction[1]["action"]);
    EXPECT_EQ("isAlive: alive", unknownAction.line(1));
}

const Talk absurdLength({asks(wireOf<LONG>(10) + wireOf<LONG>(-1) + goldenRequest("isAlive")),
                         asks(goldenRequest("isAlive"))});
const Talk hugeLength({asks(wireOf<LONG>(10) + wireOf<LONG>(16 * 1024 * 1024 + 1) + hello())});
const Talk hugeReply({asks(goldenRequest("getLock")), answers(wireOf<LONG>(0x7FFFFFFF) + kAlive)});

TEST(WiresharkConversation, StopsAtAnInvalidLength) {
    EXPECT_TRUE(absurdLength[0].has("bad_length"));
    EXPECT_TRUE(absurdLength[1].has("lost"));
    EXPECT_TRUE(absurdLength[2].has("lost"));
    EXPECT_TRUE(hugeLength[0].has("bad_length"));
    EXPECT_TRUE(hugeLength[1].has("lost"));
    EXPECT_TRUE(hugeReply[1].has("bad_length"));
    EXPECT_TRUE(hugeReply[2].has("lost"));
}

const Talk joinedLate({answers(golden("reply-users").bytes), asks(goldenRequest("isAlive")),
                       answers(kAlive)});

TEST(WiresharkConversation, MarksAReplyWhoseRequestWasNotCaptured) {
    EXPECT_TRUE(joinedLate[0].has("no_request"));
    EXPECT_EQ("isAlive: alive", joinedLate.line(2));
}

const Talk twice({asks(goldenRequest("getLock")), asks(goldenRequest("disconnect")), asks(hello()),
                  answers(wireOf<LONG>(2015))});

TEST(WiresharkConversation, StartsAgainAfterADisconnect) {
    EXPECT_EQ("initializeSchema: 2015", twice.line(3));
}

// What a central server sends to a listener.
const Talk notified({asks(goldenRequest("isAlive")), answers(kAlive),
                     asks(golden("notification-50-with-message").bytes), asks(request(51)),
                     asks(request(58, golden("message-plain").bytes) + request(1)),
                     answers(kAlive)},
                    Talk::On::anyPort);

TEST(WiresharkNotifications, AreFoundBetweenProbesAndTheirReplies) {
    EXPECT_THAT(notified.lines(),
                ElementsAre("isAlive", "isAlive: alive", "notification 50 NySeMessage saved",
                            "notification 51", "notification 58 NySeMessage saved; isAlive",
                            "isAlive: alive"));
    EXPECT_EQ("saved", notified[2]["message"]);
    EXPECT_EQ("1", notified[2]["notification"]);
    EXPECT_FALSE(notified[2].has("request"));
}

std::vector<Said> eachNotification() {
    std::vector<Said> said;
    for (const NySe::NotificationKind& kind : NySe::kNotifications)
        said.push_back(asks(request(kind.action, golden("user-plain-object").bytes)));
    return said;
}
const Talk everyNotification(eachNotification(), Talk::On::anyPort);

TEST(WiresharkNotifications, HaveTheirNumbers) {
    ASSERT_EQ(std::size(NySe::kNotifications), everyNotification.messages().size());
    for (size_t i = 0; i < std::size(NySe::kNotifications); ++i) {
        EXPECT_EQ(std::to_string(NySe::kNotifications[i].action), everyNotification[i]["action"]);
        EXPECT_TRUE(everyNotification[i].has("notification"));
        EXPECT_EQ("Anna", everyNotification[i]["user.name"]);
    }
}

// A listener continues after a negative length, and has no requests without a length.
const Talk listener({asks(request(50)), asks(wireOf<LONG>(52) + wireOf<LONG>(-1) + request(106) +
                                             request(49) + request(53))},
                    Talk::On::anyPort);

TEST(WiresharkNotifications, AreReadAsAListenerReadsThem) {
    EXPECT_THAT(listener.lines(), ElementsAre("notification 50",
                                              "notification 52 with an invalid length; getVersion; "
                                              "unknown action; notification 53"));
    EXPECT_TRUE(listener[1].has("bad_length"));
}

const Talk firstLock({asks(goldenRequest("lock"))}, Talk::On::anyPort);
const Talk firstBare({asks(goldenRequest("getVersion")), answers(wireOf(1.0))}, Talk::On::anyPort);
const Talk firstHalf({asks(goldenRequest("getPortClient")), asks(hello())}, Talk::On::anyPort, 20);

TEST(WiresharkHeuristic, RecognisesAConnectionByItsFirstMessage) {
    EXPECT_EQ("lock \"part/42\" 0x18", firstLock.line(0));
    EXPECT_EQ("getVersion", firstBare.line(0));
    EXPECT_EQ("getVersion: 1", firstBare.line(1));
    EXPECT_EQ("getPortClient Anna", firstHalf.line(0));
}

Bytes ofText(const std::string& characters) {
    return Bytes(characters.begin(), characters.end());
}

const Talk others[] = {Talk{{asks(ofText("GET / HTTP/1.1\r\n\r\n"))}, Talk::On::anyPort},
                       Talk{{asks(Bytes(64, 0))}, Talk::On::anyPort},
                       Talk{{asks(Bytes(64, 1))}, Talk::On::anyPort},
                       Talk{{asks(request(5))}, Talk::On::anyPort},             // an unknown action
                       Talk{{asks(request(10, {1, 2}))}, Talk::On::anyPort},    // a surplus
                       Talk{{asks(request(12, {1, 'a'}))}, Talk::On::anyPort},  // narrow characters
                       Talk{{asks({10, 0, 0})}, Talk::On::anyPort},
                       Talk{{asks(hello() + Bytes(8, 0xEE))}, Talk::On::anyPort},
                       Talk{{asks(wireOf<LONG>(50) + wireOf<LONG>(-1))}, Talk::On::anyPort}};

TEST(WiresharkHeuristic, IgnoresOtherTraffic) {
    for (const Talk& other : others) EXPECT_THAT(other.lines(), IsEmpty());
}

}  // namespace
