// The requests that a text answers.
#include <climits>

#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"
#include "tests/support/CStringPrinter.h"

namespace {

class ClientTexts : public ClientTest, public ::testing::WithParamInterface<TextRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    CString call() { return GetParam().call(client); }

    const std::string goodReply = goldenWire("reply-string");
    const CString goodText = _T("00-1a-2b-3c-4d-5e");
};

INSTANTIATE_TEST_SUITE_P(Request, ClientTexts, ::testing::ValuesIn(textRequests()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ClientTexts, AreWhatTheServerWrites) {
    serveRequest(request(), goodReply);
    EXPECT_EQ(goodText, call());
    expectRequestsSent();
}

TEST_P(ClientTexts, KeepEveryCharacter) {
    const std::string text = wire("FF FE FF 04 0D 00 0A 00 00 00 A9 03");
    serveRequest(request(), wireOf(static_cast<LONG>(text.size())) + text);
    EXPECT_EQ(unitsOf(CString(L"\r\n\0\u03A9", 4)), unitsOf(call()));
}

TEST_P(ClientTexts, InSingleBytesArriveWhole) {
    serve({byteByByte(request(), goodReply)});
    EXPECT_EQ(goodText, call());
}

TEST_P(ClientTexts, AreEmptyWithoutAUsefulReply) {
    for (const std::string& reply : messagesOtherThan("reply-string")) {
        SCOPED_TRACE(shown(reply));
        serveRequest(request(), reply, Then::close);
        EXPECT_TRUE(call().IsEmpty());
        client.disconnect();
    }
}

TEST_P(ClientTexts, AreEmptyWithoutConnection) {
    EXPECT_TRUE(call().IsEmpty());
}

using ClientEvents = ClientTest;

TEST_F(ClientEvents, AreAskedForWithTheArgumentAsItIs) {
    const std::string request = goldenWire("request-getEventListFromEventViewer");
    const std::string header = request.substr(0, request.size() - sizeof(LONG));
    const std::vector<int> values{0, 1, -1, INT_MAX, INT_MIN};
    std::vector<Step> steps;
    for (const int value : values) {
        steps.push_back({header + wireOf<LONG>(value), {goldenWire("reply-string")}});
    }
    serve(steps);
    for (const int value : values) client.getEventListFromEventViewer(value);
    expectRequestsSent();
}

}  // namespace
