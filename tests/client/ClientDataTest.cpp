// Objects of the application's own that travel with a request. A user shows on the wire which
// schema it was archived under: below 2015 its soft type is missing.
#include "tests/client/ClientTest.h"

namespace {

constexpr NySe::SchemaType kOldSchema = static_cast<NySe::SchemaType>(2014);

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

class ClientData : public ClientTest {
  protected:
    void agreeOn(NySe::SchemaType schema) {
        steps.push_back({goldenWire("request-initializeSchema"), {wireOf(schema)}});
    }
    // Expects a request of that action and payload, then calls.
    template <class Call>
    void expectSent(LONG action, const std::string& payload, Call call) {
        steps.push_back({wireOf(action) + wireOf(static_cast<LONG>(payload.size())) + payload, {}});
        serve(steps);
        if (steps.size() > 1) client.initializeSchema();
        call();
        expectRequestsSent();
    }

    // The class-tagged user, with the schema that its own field names.
    static std::string userObject(LONG schema, bool withSoftType) {
        std::string bytes = goldenWire("user-plain-object");
        bytes.replace(bytes.size() - 2 * sizeof(LONG), sizeof(LONG), wireOf(schema));
        return withSoftType ? bytes : bytes.substr(0, bytes.size() - sizeof(LONG));
    }

    std::vector<Step> steps;
    NySeUser user = goldenUser();
    NySeUser object = goldenUser();
};

TEST_F(ClientData, ForOneUserIsArchivedUnderAnOlderSchemaOfTheUser) {
    agreeOn(NySe::schema2015);
    user.setSchema(kOldSchema);
    expectSent(73, userObject(2014, false) + userObject(2015, false),
               [this] { client.sendUserData(user, object); });
}

TEST_F(ClientData, ForOneUserIsArchivedUnderANewerSchemaOfTheUser) {
    agreeOn(kOldSchema);
    expectSent(73, userObject(2015, true) + userObject(2015, true),
               [this] { client.sendUserData(user, object); });
}

TEST_F(ClientData, ForAllIsArchivedUnderTheSessionSchema) {
    agreeOn(NySe::schema2015);
    expectSent(74, userObject(2015, true), [this] { client.sendAllUserData(object); });
}

TEST_F(ClientData, ForAllIsArchivedUnderAnOldSessionSchema) {
    agreeOn(kOldSchema);
    expectSent(74, userObject(2015, false), [this] { client.sendAllUserData(object); });
}

TEST_F(ClientData, OfAConnectionIsArchivedUnderTheSessionSchema) {
    agreeOn(NySe::schema2015);
    expectSent(72, wireOf<LONG>(1) + wireOf<LONG>(2) + userObject(2015, true),
               [this] { client.sendConnectionData(1, 2, object); });
}

TEST_F(ClientData, OfAConnectionIsArchivedUnderSchema0BeforeOneIsAgreed) {
    expectSent(72, wireOf<LONG>(-1) + wireOf<LONG>(INT32_MIN) + userObject(2015, false),
               [this] { client.sendConnectionData(-1, INT32_MIN, object); });
}

TEST_F(ClientData, ThatCannotBeArchivedIsTruncated) {
    BrokenObject broken(true);
    const std::string start = userObject(2015, false).substr(0, 14) + wire("55 55 55 55");
    expectSent(74, start, [&] { client.sendAllUserData(broken); });
}

TEST_F(ClientData, OfOneUserThatCannotBeArchivedLeavesTheUser) {
    BrokenObject broken(true);
    const std::string start = userObject(2015, false).substr(0, 14) + wire("55 55 55 55");
    expectSent(73, userObject(2015, true) + start, [&] { client.sendUserData(user, broken); });
}

TEST_F(ClientData, ThatThrowsSomethingElseIsNotSentAndNotThrown) {
    BrokenObject broken(false);
    serve({});
    EXPECT_NO_THROW(client.sendAllUserData(broken));
    EXPECT_NO_THROW(client.sendUserData(user, broken));
    EXPECT_NO_THROW(client.sendConnectionData(1, 2, broken));
    expectRequestsSent();
}

}  // namespace
