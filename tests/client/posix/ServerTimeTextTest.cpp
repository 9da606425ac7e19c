#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>

#include "NyServer/client/ServerInformation.h"
#include "tests/support/CStringPrinter.h"

namespace {

// With a locale and a time zone of the environment.
class ServerTimeText : public testing::Test {
  protected:
    ServerTimeText() { use("C", "JST-9"); }
    static void use(const char* locale, const char* zone) {
        ::setenv("LC_ALL", locale, 1);
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    static CString text(long seconds) { return serverinformation::timeText(seconds); }
};

TEST_F(ServerTimeText, IsLocalSince1970) {
    EXPECT_EQ(text(0), _T("01/01/70 09:00:00"));
    EXPECT_EQ(text(1'700'000'000), _T("11/15/23 07:13:20"));
    EXPECT_EQ(text(951'782'400 + 15 * 3600), _T("03/01/00 00:00:00"));
    use("C", "UTC0");
    EXPECT_EQ(text(0), _T("01/01/70 00:00:00"));
}

TEST_F(ServerTimeText, IsInvalidOutsideTheCalendar) {
    for (const long seconds : {-1L, LONG_MIN, LONG_MAX})
        EXPECT_EQ(text(seconds), _T("Invalid DateTime")) << seconds;
}

TEST_F(ServerTimeText, HasTheClassicFormInALocaleThatIsNotInstalled) {
    use("no_such_locale", "UTC0");
    EXPECT_EQ(text(0), _T("01/01/70 00:00:00"));
}

}  // namespace
