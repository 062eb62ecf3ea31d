#include "support/KelArcTest.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace {

using support::Function;
using support::Kind;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class Logging : public support::KelArcTest
{
protected:
    /// The one line of a successful AT command, as it came.
    std::string lineOfCommand(const std::string& command)
    {
        journal.clear();
        arcsim::answerNext(Function::AtcTunneling, {{}});
        kelarc().ATcmd(command, answer());
        settle();
        return journal.entries(Kind::line).at(0).raw;
    }

    /// How long a call took, as the line of this number says.
    std::chrono::milliseconds elapsedOf(std::size_t number)
    {
        const std::string line = journal.entries(Kind::line).at(number).raw;
        const std::string mark = " took ";
        return std::chrono::milliseconds(std::stoul(line.substr(line.find(mark) + mark.size())));
    }
};

TEST_F(Logging, ALineHasThePrefixOneBlankAndTheMessage)
{
    open();
    EXPECT_THAT(
        lineOfCommand("AT"),
        MatchesRegex("KelArc::logArcResult\\.1224: \\[15\\] ARC_AtcTunneling\\(\"AT\"\\) took [0-9]+ ms: Command "
                     "has been executed successfully \\(0\\)"));
}

TEST_F(Logging, AMessageWithoutConversionsIsUnchanged)
{
    kelarc().stopGNSS([](int) {});
    EXPECT_EQ(journal.entries(Kind::line).at(0).raw,
              "KelArc::stopGNSS.600: stopGNSS called, cancelling current ARC tasks");
    settle();
}

TEST_F(Logging, ALineIsCutAt510Characters)
{
    open();
    const std::string prefix = "KelArc::logArcResult.1224: [15] ARC_AtcTunneling(\"";
    const std::string line = lineOfCommand(std::string(600, 'x'));
    EXPECT_EQ(line, prefix + std::string(510 - prefix.size(), 'x'));
}

TEST_F(Logging, ALineOfUpTo510CharactersIsWhole)
{
    open();
    const std::size_t rest = lineOfCommand("").size();
    ASSERT_LT(rest, 400U);
    for (std::size_t length = 490 - rest; length <= 515 - rest; ++length) {
        const std::string line = lineOfCommand(std::string(length, 'y'));
        // The elapsed time may have more digits than that of the first command.
        EXPECT_GE(line.size(), std::min<std::size_t>(510, rest + length));
        EXPECT_LE(line.size(), 510U);
        EXPECT_TRUE(line.size() == 510 || line.substr(line.size() - 3) == "(0)") << line;
    }
}

TEST_F(Logging, CallTextsAreNotTakenForFormats)
{
    open();
    EXPECT_THAT(lineOfCommand("%s%n%d"),
                StartsWith("KelArc::logArcResult.1224: [15] ARC_AtcTunneling(\"%s%n%d\") took "));
}

TEST_F(Logging, TasksLogOnTheWorkerThread)
{
    open();
    lineOfCommand("AT");
    EXPECT_EQ(journal.entries(Kind::line).at(0).thread, workerThread());
}

TEST_F(Logging, LinesMayComeFromTwoThreadsAtOnce)
{
    open();
    arcsim::answerAlways(Function::ResetAGNSS, {});
    for (int i = 0; i < 50; ++i) {
        kelarc().resetAGNSS([](int) {});
        kelarc().setMinElevation(0, [](int, bool) {});
    }
    settle();
    EXPECT_EQ(journal.count(Kind::line), 100U);
}

TEST_F(Logging, TheElapsedTimeIsThatOfTheCallInMilliseconds)
{
    open();
    arcsim::Answer slow;
    slow.latency = std::chrono::milliseconds(40);
    arcsim::answerNext(Function::ResetAGNSS, {slow});
    const auto before = std::chrono::steady_clock::now();
    kelarc().resetAGNSS(answer());
    settle();
    const auto all = std::chrono::steady_clock::now() - before;
    const std::chrono::milliseconds elapsed = elapsedOf(0);
    EXPECT_GE(elapsed, std::chrono::milliseconds(40));
    EXPECT_LE(elapsed, all);
}

TEST_F(Logging, EachAttemptIsTimedOnItsOwn)
{
    open();
    arcsim::Answer slow;
    slow.latency = std::chrono::milliseconds(300);
    slow.code = 2;
    arcsim::answerNext(Function::ResetAGNSS, {slow, {}});
    const auto before = std::chrono::steady_clock::now();
    kelarc().resetAGNSS(answer());
    settle();
    const auto all = std::chrono::steady_clock::now() - before;
    EXPECT_GE(elapsedOf(0), std::chrono::milliseconds(300));
    EXPECT_LE(elapsedOf(0) + elapsedOf(1), all) << "no time is counted twice";
}

class RealTime : public support::KelArcTest
{
};

TEST_F(RealTime, AQuarterOfASecondPassesBetweenAttempts)
{
    open();
    std::vector<std::chrono::steady_clock::time_point> attempts;
    arcsim::Answer failing;
    failing.code = 2;
    failing.during = [&] { attempts.push_back(std::chrono::steady_clock::now()); };
    arcsim::Answer succeeding = failing;
    succeeding.code = 0;
    arcsim::answerNext(Function::ResetAGNSS, {failing, succeeding});
    support::pauses::takeTime();
    kelarc().resetAGNSS(answer());
    ASSERT_TRUE(journal.waitFor(Kind::answer, 1));
    ASSERT_EQ(attempts.size(), 2U);
    EXPECT_GE(attempts[1] - attempts[0], std::chrono::milliseconds(250));
}

}  // namespace
