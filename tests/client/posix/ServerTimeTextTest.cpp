#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>

#include "NyServer/client/ServerInformation.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/TempFile.h"

// Read by the leak sanitizer: the C library does not free its list of the folders in LOCPATH.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:argz_add_sep";
}

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

// The folder of a locale that is compiled from the system's sources.
class CompiledLocale {
  public:
    CompiledLocale(const char* language, const char* encoding) {
        const WideText path = m_folder.path("locale");
        const std::string command = std::string("localedef -i ") + language + " -f " + encoding +
                                    " " + std::string(path.begin(), path.end()) + " 2> /dev/null";
        m_isCompiled = std::system(command.c_str()) == 0;
        const WideText all = m_folder.path("");
        ::setenv("LOCPATH", std::string(all.begin(), all.end()).c_str(), 1);
    }
    ~CompiledLocale() { ::unsetenv("LOCPATH"); }
    CompiledLocale(const CompiledLocale&) = delete;
    CompiledLocale& operator=(const CompiledLocale&) = delete;

    bool isCompiled() const { return m_isCompiled; }

  private:
    const TempFolder m_folder;
    bool m_isCompiled = false;
};

TEST_F(ServerTimeText, IsThatOfALocaleWhoseEncodingIsNotUtf8) {
    const CompiledLocale locale("ja_JP", "EUC-JP");
    if (!locale.isCompiled()) GTEST_SKIP() << "the sources of the locale are not installed";
    use("locale", "JST-9");
    EXPECT_EQ(text(1'700'000'000), CString(u"2023\u5E7411\u670815\u65E5 07\u664213\u520620\u79D2"));
}

}  // namespace
