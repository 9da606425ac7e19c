// nyctl's commands about the online service: what they print, and with what status they end.
#include "tests/apps/NyctlRun.h"
#include "tests/online/OnlineTest.h"

namespace {

class NyctlOnline : public OnlineTest {
  protected:
    // There is no central server, and none is needed.
    ExitStatus run(const std::string& line) {
        return m_run(Options{{"127.0.0.1:1", "Anna"}, m_json}, line);
    }

    static std::string url(unsigned int port) { return "http://127.0.0.1:" + std::to_string(port); }

    bool m_json = false;
    NyctlRun m_run;
};

TEST_F(NyctlOnline, PingsTheServiceNamedOrElseProduction) {
    EXPECT_EQ(exitYes, run("online ping"));
    EXPECT_EQ("service: production\nreachable: true\n", m_run.printed());
    EXPECT_EQ(exitYes, run("online ping --service test"));
    EXPECT_EQ(exitYes, run("online ping --service production"));
    const WebServer custom(page(""));
    EXPECT_EQ(exitYes, run("online ping --service " + url(custom.port()) + "/"));
    EXPECT_EQ(exitYes, run("online ping --service " + url(custom.port())));
    EXPECT_EQ(Paths{kPingPath}, m_test.paths());
    EXPECT_EQ((Paths{kPingPath, kPingPath}), m_production.paths());
    EXPECT_EQ((Paths{kPingPath, kPingPath}), custom.paths());
    EXPECT_EQ(NyFctWebService::serverUrlProduction, NyFctWebService::getServerUrlType());
}

TEST_F(NyctlOnline, PrintsTheVersionAlsoInJson) {
    EXPECT_EQ(exitYes, run("online version 42 --service test"));
    EXPECT_EQ("product: 42\nversion: test\n", m_run.printed());
    EXPECT_EQ(Paths{kVersionPath}, m_test.paths());
    m_json = true;
    EXPECT_EQ(exitYes, run("online version 42"));
    EXPECT_EQ("{\"product\":42,\"version\":\"production\"}\n", m_run.printed());
    EXPECT_EQ(exitYes, run("online ping --service test"));
    EXPECT_EQ("{\"service\":\"test\",\"reachable\":true}\n", m_run.printed());
}

TEST_F(NyctlOnline, HasNoReplyFromAServiceThatIsNotRunning) {
    const peers::RefusingPort nobody;
    for (const char* command : {"online ping", "online version 42"}) {
        EXPECT_EQ(exitNoReply, run(command + (" --service " + url(nobody.port()))));
        EXPECT_EQ("", m_run.printed());
        EXPECT_EQ("nyctl: no reply from the service " + url(nobody.port()) + "\n",
                  m_run.complaint());
    }
}

TEST_F(NyctlOnline, FindsNoVersionAtAServiceThatPublishesNone) {
    const WebServer custom(page("<ANSWER/>"));
    EXPECT_EQ(exitNo, run("online version 42 --service " + url(custom.port())));
    EXPECT_EQ("", m_run.printed());
    EXPECT_EQ("nyctl: no version of product 42, or no production service, which is tried first\n",
              m_run.complaint());
}

TEST_F(NyctlOnline, RefusesOtherServices) {
    for (const char* service : {"nonsense", "ftp://127.0.0.1/", "Test"}) {
        EXPECT_THROW(run(std::string("online ping --service ") + service), CLI::ValidationError);
    }
}

}  // namespace
