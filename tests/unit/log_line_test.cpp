#include "kelarc/LogLine.h"
#include "kelarc/names.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

struct Line
{
    char buffer[512];
    [[gnu::format(printf, 5, 6)]] Line(const char* file, const char* function, std::size_t line, const char* format,
                                       ...)
    {
        std::fill(std::begin(buffer), std::end(buffer), 'x');
        std::va_list arguments;
        va_start(arguments, format);
        kelarc::formatLogLine(buffer, file, function, line, format, arguments);
        va_end(arguments);
    }
    std::string text() const { return buffer; }
};

TEST(LogLine, BeginsWithBaseNameFunctionAndLine)
{
    EXPECT_EQ(Line("kelarc/KelArc", "logArcResult", 1224, "[%d] %s", 14, "call").text(),
              "KelArc::logArcResult.1224: [14] call");
}

TEST(LogLine, TakesTheNameAfterTheLastSlash)
{
    EXPECT_EQ(Line("/a/b/c/Name.cpp", "f", 7, "m").text(), "Name.cpp::f.7: m");
}

TEST(LogLine, DropsTheFirstCharacterOfAPathWithoutASlash)
{
    EXPECT_EQ(Line("Name.cpp", "f", 7, "m").text(), "ame.cpp::f.7: m");
}

TEST(LogLine, DropsTheSlashOfAPathThatBeginsWithItsOnlyOne)
{
    EXPECT_EQ(Line("/Name.cpp", "f", 7, "m").text(), "Name.cpp::f.7: m");
}

TEST(LogLine, HasAnEmptyBaseNameForAPathThatEndsWithASlash)
{
    EXPECT_EQ(Line("dir/", "f", 7, "m").text(), "::f.7: m");
    EXPECT_EQ(Line("x", "f", 7, "m").text(), "::f.7: m");
}

TEST(LogLine, AcceptsAnEmptyPath)
{
    EXPECT_EQ(Line("", "f", 7, "m").text(), "::f.7: m");
}

TEST(LogLine, LeavesAMessageWithoutConversionsUnchanged)
{
    EXPECT_EQ(Line("kelarc/KelArc", "stopGNSS", 600, "stopGNSS called, cancelling current ARC tasks").text(),
              "KelArc::stopGNSS.600: stopGNSS called, cancelling current ARC tasks");
}

TEST(LogLine, CutsALineTo510Characters)
{
    const Line line("dir/File", "f", 1, "%s", std::string(600, 'm').c_str());
    const std::string prefix = "File::f.1: ";
    EXPECT_EQ(line.text(), prefix + std::string(510 - prefix.size(), 'm'));
    EXPECT_EQ(line.buffer[510], '\0');
    EXPECT_EQ(line.buffer[511], '\0');
}

TEST(LogLine, KeepsALineOfExactly510Characters)
{
    const std::string prefix = "File::f.1: ";
    const std::string message(510 - prefix.size(), 'm');
    EXPECT_EQ(Line("dir/File", "f", 1, "%s", message.c_str()).text(), prefix + message);
}

TEST(LogLine, FillsTheRestOfItsBufferWithZeros)
{
    const Line line("dir/File", "f", 1, "m");
    EXPECT_TRUE(std::all_of(line.buffer + 12, line.buffer + 512, [](char c) { return c == '\0'; }));
}

TEST(LogLine, LeavesNoRoomForTheMessageBehindAnAbsurdlyLongPrefix)
{
    const std::string function(600, 'f');
    const Line line("dir/File", function.c_str(), 1, "%s", "message");
    EXPECT_EQ(line.text(), "File::" + std::string(504, 'f'));
    EXPECT_EQ(line.buffer[511], '\0');
}

TEST(LogLine, HandlesPrefixesThatJustFitAndJustDoNot)
{
    // "F::" + function + ".1: " is seven characters longer than the function's name.
    for (std::size_t prefix : {509u, 510u, 511u, 512u}) {
        const std::string function(prefix - 7, 'f');
        const Line line("dir/F", function.c_str(), 1, "%s", "mm");
        EXPECT_EQ(line.text(), ("F::" + function + ".1: mm").substr(0, 510)) << prefix;
    }
}

TEST(LogLine, WritesNumbersToTheEndsOfTheirTypes)
{
    const std::string line = sizeof(std::size_t) == 8 ? "18446744073709551615" : "4294967295";
    EXPECT_EQ(Line("dir/F", "f", std::numeric_limits<std::size_t>::max(), "[%d] [%d] [%d] [%u]", -2147483647 - 1,
                   2147483647, 0, 4294967295u)
                  .text(),
              "F::f." + line + ": [-2147483648] [2147483647] [0] [4294967295]");
}

TEST(LogLine, WritesAnyOtherConversionAsPrintfDoes)
{
    EXPECT_EQ(Line("dir/F", "f", 1, "%s: %5.1f of %d%% (%u)", "part", 12.34, 50, 7u).text(),
              "F::f.1: part:  12.3 of 50% (7)");
    EXPECT_EQ(Line("dir/F", "f", 1, "%%").text(), "F::f.1: %");
}

TEST(LogLine, IsCutTheSameWithAnyOtherConversion)
{
    const Line line("dir/File", "f", 1, "%5s", std::string(600, 'm').c_str());
    EXPECT_EQ(line.text(), "File::f.1: " + std::string(499, 'm'));
    EXPECT_EQ(line.buffer[510], '\0');
    EXPECT_EQ(line.buffer[511], '\0');
}

TEST(LogLine, EndsBeforeWhatPrintfCannotWrite)
{
    const Line line("dir/F", "f", 1, "before %ls", L"\u20ac");
    EXPECT_EQ(line.text(), "F::f.1: before ");
    EXPECT_TRUE(std::all_of(line.buffer + 15, line.buffer + 512, [](char c) { return c == '\0'; }));
}

TEST(LogLine, EndsBeforeTheFirstOfSeveralConversionsWhenPrintfCannotWriteALaterOne)
{
    const Line line("dir/F", "f", 1, "%s %5d then %ls", "before", 7, L"\u20ac");
    EXPECT_EQ(line.text(), "F::f.1: before ");
    EXPECT_TRUE(std::all_of(line.buffer + 15, line.buffer + 512, [](char c) { return c == '\0'; }));
}

TEST(LogLine, IsCutInsideANumberToo)
{
    for (std::size_t length : {500u, 503u, 504u, 505u, 506u, 507u}) {
        const std::string text(length - 8, 'x');
        const Line line("dir/F", "f", 1, "%s%d.", text.c_str(), -1234);
        EXPECT_EQ(line.text(), ("F::f.1: " + text + "-1234.").substr(0, 510)) << length;
    }
}

std::string resultLine(int retriesLeft, const std::string& call, unsigned elapsedMs, int code)
{
    char buffer[512];
    std::fill(std::begin(buffer), std::end(buffer), 'x');
    kelarc::formatResultLine(buffer, retriesLeft, call.c_str(), elapsedMs, code);
    const std::string text = buffer;
    EXPECT_TRUE(std::all_of(buffer + text.size(), buffer + 512, [](char c) { return c == '\0'; }));
    return text;
}

TEST(ResultLine, HasRetriesCallTimeTextAndCode)
{
    EXPECT_EQ(resultLine(14, "ARC_Open()", 1200, 2),
              "KelArc::logArcResult.1224: [14] ARC_Open() took 1200 ms: Timeout while waiting for module response (2)");
    EXPECT_EQ(resultLine(-1, "", 0, -2147483647 - 1),
              "KelArc::logArcResult.1224: [-1]  took 0 ms: Unknown result (-2147483648)");
    EXPECT_EQ(resultLine(15, "%s%n", 4294967295u, 0),
              "KelArc::logArcResult.1224: [15] %s%n took 4294967295 ms: Command has been executed successfully (0)");
}

TEST(ResultLine, IsCutTo510CharactersWhereverThatIs)
{
    for (std::size_t length = 400; length < 520; ++length) {
        const std::string call(length, 'c');
        EXPECT_EQ(resultLine(15, call, 4321, 1),
                  ("KelArc::logArcResult.1224: [15] " + call +
                   " took 4321 ms: API called before library has been opened with ARC_Open() (1)")
                      .substr(0, 510))
            << length;
    }
}

}  // namespace
