#include "support/KelArcTest.h"

#include <chrono>
#include <sstream>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using support::Function;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;

class Introspection : public support::KelArcTest
{
protected:
    static Strings linesOf(const std::string& text)
    {
        Strings found;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            found.push_back(line);
        return found;
    }
};

TEST_F(Introspection, ShowsNothingBeforeAnyTask)
{
    EXPECT_EQ(kelarc().getRunningTaskId(), 0U);
    EXPECT_EQ(kelarc().getRunningTaskName(), "No running task");
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    EXPECT_EQ(kelarc().getDelayedExecutionTime(), 0);
    EXPECT_EQ(kelarc().tasksToString(), "All tasks (0):\n");
}

TEST_F(Introspection, ShowsTheRunningTaskWhileItsBodyRuns)
{
    const support::Gate gate = holdWorker();
    EXPECT_EQ(kelarc().getRunningTaskId(), 1U);
    EXPECT_EQ(kelarc().getRunningTaskName(), "kelarc/KelArc.634: ARC_ResetAGNSS()");
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    EXPECT_EQ(kelarc().getDelayedExecutionTime(), 0);
    EXPECT_EQ(kelarc().tasksToString(), "All tasks (0):\n");
}

TEST_F(Introspection, ShowsNothingAfterTheTask)
{
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_EQ(kelarc().getRunningTaskId(), 0U);
    const auto end = steady_clock::now() + std::chrono::seconds(30);
    while (kelarc().getRunningTaskName() != "No running task" && steady_clock::now() < end)
        std::this_thread::yield();  // the name follows the id
    EXPECT_EQ(kelarc().getRunningTaskName(), "No running task");
}

TEST_F(Introspection, ShowsTheRunningTaskToItsOwnAnswer)
{
    std::string seen;
    kelarc().getArcVersion([&](int, std::string&&) {
        seen = std::to_string(kelarc().getRunningTaskId()) + ' ' + kelarc().getRunningTaskName() + ' ' +
               kelarc().tasksToString();
    });
    settle();
    EXPECT_EQ(seen, "1 kelarc/KelArc.270: ARC_GetArcVersion() All tasks (0):\n");
}

TEST_F(Introspection, NumbersTasksFromOneInTheOrderOfTheRequests)
{
    std::vector<std::uint32_t> ids;
    const auto note = [&] { ids.push_back(kelarc().getRunningTaskId()); };
    for (int i = 0; i < 3; ++i)
        kelarc().getArcVersion([&](int, std::string&&) { note(); });
    settle();
    EXPECT_THAT(ids, ElementsAre(1U, 2U, 3U));
}

TEST_F(Introspection, ListsWaitingTasksInTheOrderOfExecution)
{
    const support::Gate gate = holdWorker();
    kelarc().stopGNSS([](int) {});
    kelarc().ATcmd("AT'\"", answer());
    kelarc().getLstaGnss(kelarc::lsta::TECH{1}, answer());
    EXPECT_EQ(kelarc().getPendingTasks(), 3U);
    EXPECT_LE(kelarc().getDelayedExecutionTime(), 0);

    const std::string text = kelarc().tasksToString();
    EXPECT_EQ(text.back(), '\n');
    const std::string planned = "', isDelayed: false, execution was planned in: (0|-[0-9]+) ms";
    EXPECT_THAT(
        linesOf(text),
        ElementsAre(
            "All tasks (3):", MatchesRegex("\tTask id: 2, name: 'kelarc/KelArc\\.601: ARC_StopGNSS\\(\\)" + planned),
            MatchesRegex("\tTask id: 3, name: 'kelarc/KelArc\\.333: ARC_AtcTunneling\\(\"AT'\"\"\\)" + planned),
            MatchesRegex("\tTask id: 4, name: 'kelarc/KelArc\\.1027: ARC_CurrentLSTA\\(\"10\"\\)" + planned)));
}

TEST_F(Introspection, TellsHowLongTheFirstTaskIsOverdue)
{
    const support::Gate gate = holdWorker();
    const auto before = steady_clock::now();
    kelarc().getArcVersion([](int, std::string&&) {});
    const auto after = steady_clock::now();
    while (steady_clock::now() < after + milliseconds(25))
        std::this_thread::yield();
    const std::int64_t time = kelarc().getDelayedExecutionTime();
    const std::string listing = kelarc().tasksToString();
    const auto atMost = std::chrono::duration_cast<milliseconds>(steady_clock::now() - before).count();
    EXPECT_LE(time, -25);
    EXPECT_GE(time, -atMost);
    const std::string mark = "planned in: ";
    const long long listed = std::stoll(listing.substr(listing.find(mark) + mark.size()));
    EXPECT_LE(listed, time);
    EXPECT_GE(listed, -atMost);
}

TEST_F(Introspection, CountsUpTo128WaitingTasks)
{
    const support::Gate gate = holdWorker();
    for (unsigned waiting = 1; waiting <= 128; ++waiting) {
        kelarc().getArcVersion([](int, std::string&&) {});
        EXPECT_EQ(kelarc().getPendingTasks(), waiting);
    }
    kelarc().getArcVersion([](int, std::string&&) {});
    EXPECT_EQ(kelarc().getPendingTasks(), 128U);
    EXPECT_EQ(linesOf(kelarc().tasksToString()).size(), 129U);
}

TEST_F(Introspection, ShowsATaskWhileItPauses)
{
    failTimes(Function::ResetAGNSS, 1, 2);
    std::string name;
    duringPause(1, [&] { name = kelarc().getRunningTaskName(); });
    kelarc().resetAGNSS([](int) {});
    settle();
    EXPECT_EQ(name, "kelarc/KelArc.634: ARC_ResetAGNSS()");
}

}  // namespace
