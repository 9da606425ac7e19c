// Objects of the application's own that travel with a request. A user shows on the wire which
// schema it was archived under: below 2015 its soft type is missing.
#include "tests/client/ClientTest.h"

namespace {

constexpr LONG kOldSchema = 2014;

// An object whose archiving fails after its first bytes.
class BrokenObject : public CObject {
  public:
    explicit BrokenObject(bool withArchiveError) : m_withArchiveError(withArchiveError) {}
    CRuntimeClass* GetRuntimeClass() const override { return RUNTIME_CLASS(NySeUser); }
    void Serialize(CArchive& ar) override {
        ar << LONG{0x55555555};
        if (m_withArchiveError) AfxThrowArchiveException(CArchiveException::genericException);
        throw std::runtime_error("not an archive's error");
    }

  private:
    bool m_withArchiveError;
};

// The class-tagged user, with the schema that its own field names.
std::string userObject(LONG schema, bool withSoftType) {
    std::string bytes = goldenWire("user-plain-object");
    bytes.replace(bytes.size() - 2 * sizeof(LONG), sizeof(LONG), wireOf(schema));
    return withSoftType ? bytes : bytes.substr(0, bytes.size() - sizeof(LONG));
}

class ClientData : public ClientTest {
  protected:
    // Agrees on the schema, unless it is 0. Expects that `call` sends the action and the payload.
    template <class Call>
    void expectSent(LONG schema, LONG action, const std::string& payload, Call call) {
        std::vector<Step> steps;
        if (schema != 0)
            steps.push_back({goldenWire("request-initializeSchema"), {wireOf(schema)}});
        steps.push_back({wireOf(action) + wireOf(static_cast<LONG>(payload.size())) + payload, {}});
        serve(steps);
        if (schema != 0) client.initializeSchema();
        call();
        expectRequestsSent();
    }

    NySeUser user = goldenUser();
    NySeUser object = goldenUser();
    BrokenObject broken{true};
    const std::string startOfBroken = userObject(2015, false).substr(0, 14) + wire("55 55 55 55");
};

TEST_F(ClientData, ForOneUserIsArchivedUnderTheSchemaOfTheUser) {
    const auto call = [this] { client.sendUserData(user, object); };
    expectSent(kOldSchema, 73, userObject(2015, true) + userObject(2015, true), call);
    user.setSchema(kOldSchema);
    expectSent(2015, 73, userObject(kOldSchema, false) + userObject(2015, false), call);
}

TEST_F(ClientData, ForAllIsArchivedUnderTheSessionSchema) {
    const auto call = [this] { client.sendAllUserData(object); };
    expectSent(2015, 74, userObject(2015, true), call);
    expectSent(kOldSchema, 74, userObject(2015, false), call);
}

TEST_F(ClientData, OfAConnectionIsArchivedUnderTheSessionSchema) {
    expectSent(2015, 72, wireOf<LONG>(1) + wireOf<LONG>(2) + userObject(2015, true),
               [this] { client.sendConnectionData(1, 2, object); });
}

TEST_F(ClientData, OfAConnectionIsArchivedUnderSchema0BeforeOneIsAgreed) {
    expectSent(0, 72, wireOf<LONG>(-1) + wireOf<LONG>(INT32_MIN) + userObject(2015, false),
               [this] { client.sendConnectionData(-1, INT32_MIN, object); });
}

TEST_F(ClientData, ThatCannotBeArchivedIsTruncated) {
    expectSent(0, 74, startOfBroken, [this] { client.sendAllUserData(broken); });
}

TEST_F(ClientData, OfOneUserThatCannotBeArchivedLeavesTheUser) {
    expectSent(0, 73, userObject(2015, true) + startOfBroken,
               [this] { client.sendUserData(user, broken); });
}

TEST_F(ClientData, ThatThrowsSomethingElseIsNotSentAndNotThrown) {
    BrokenObject throwing(false);
    serve({});
    EXPECT_NO_THROW(client.sendAllUserData(throwing));
    EXPECT_NO_THROW(client.sendUserData(user, throwing));
    EXPECT_NO_THROW(client.sendConnectionData(1, 2, throwing));
    expectRequestsSent();
}

}  // namespace
