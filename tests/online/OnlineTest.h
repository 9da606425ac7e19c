// Tests of the online service client against servers on this machine.
#pragma once

#include <gtest/gtest.h>

#include "NyServer/online/NyFctWebService.h"
#include "tests/online/System.h"
#include "tests/online/TestAddresses.h"
#include "tests/online/WebServer.h"
#include "tests/support/CStringPrinter.h"

using Paths = std::vector<std::string>;

inline const std::string kPingPath = "/_Utilities/Ping.aspx";
inline const std::string kVersionPath = "/_Utilities/Version.aspx?sid=42";

// Every test begins with the production service chosen and a production server that answers, and
// must leave no page open.
class OnlineTest : public ::testing::Test {
  protected:
    OnlineTest() {
        addresses::production = m_production.address();
        addresses::test = m_test.address();
        NyFctWebService::connectToTestBase(false);
    }
    ~OnlineTest() override {
        NyFctWebService::connectToTestBase(false);
        addresses::isMemoryLeft = true;
        EXPECT_TRUE(areAllPagesClosed());
    }

    static CString version() { return NyFctWebService::getOnlineVersionFromSoftwareID(42); }

    // The version by a custom service that answers so.
    static CString versionBy(const peers::Script& answer) {
        const WebServer custom(answer);
        return versionAt(custom.address());
    }

    static CString versionAt(const CString& address) {
        NyFctWebService::setCustomServerUrl(address);
        const CString found = version();
        NyFctWebService::connectToTestBase(false);
        return found;
    }

    static CString refusingAddress(const peers::RefusingPort& port) {
        return CString(("http://127.0.0.1:" + std::to_string(port.port()) + "/").c_str());
    }

    WebServer m_production{page("<VERSION>production</VERSION>")};
    WebServer m_test{page("<VERSION>test</VERSION>")};
};
