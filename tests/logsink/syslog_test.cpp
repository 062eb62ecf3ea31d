#include "kelarc/logsink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace {

std::vector<std::string> g_syslog;

void remember(int priority, const char* format, std::va_list arguments)
{
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    g_syslog.push_back(std::to_string(priority) + ' ' + text);
    errno = 99;
}

}  // namespace

// Found before the C library's; the second is what the first becomes when the sources are fortified.
extern "C" {
void syslog(int priority, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    remember(priority, format, arguments);
    va_end(arguments);
}
void __syslog_chk(int priority, int, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    remember(priority, format, arguments);
    va_end(arguments);
}
}

namespace {

using kelarc::logsink::toSyslog;
using ::testing::ElementsAre;

class Syslog : public ::testing::Test
{
protected:
    Syslog() { g_syslog.clear(); }
};

TEST_F(Syslog, ReceivesALevelAsAPriority)
{
    for (const int level : {2, 3, 4, 5, 6})
        toSyslog()(level, "text");
    EXPECT_THAT(g_syslog, ElementsAre("6 text", "5 text", "4 text", "3 text", "3 text"));
}

TEST_F(Syslog, ReceivesALineNotAsAFormat)
{
    toSyslog()(4, "100 %s %n \xc3\xa4");
    EXPECT_THAT(g_syslog, ElementsAre("4 100 %s %n \xc3\xa4"));
}

TEST_F(Syslog, ReceivesOneLineWhateverControlCharactersALineHas)
{
    toSyslog()(4, "AT\nOK\033[2J\xc2\x9b\xff");
    EXPECT_THAT(g_syslog, ElementsAre("4 AT\\nOK\\x1b[2J\\xc2\\x9b\\xff"));
}

TEST_F(Syslog, ReceivesALevelBelowTwoAsDebugWhenAskedFor)
{
    toSyslog()(1, "left out");
    toSyslog(1)(1, "text");
    EXPECT_THAT(g_syslog, ElementsAre("7 text"));
}

TEST_F(Syslog, LeavesErrnoAlone)
{
    errno = 77;
    toSyslog()(4, "text");
    EXPECT_EQ(errno, 77);
}

TEST_F(Syslog, ReceivesNothingBelowTheLowestLevel)
{
    toSyslog(4)(3, "busy");
    toSyslog(4)(4, "warning");
    EXPECT_THAT(g_syslog, ElementsAre("4 warning"));
}

}  // namespace
