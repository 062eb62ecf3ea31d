#include "unit/QueueFixture.h"

#include <limits>

using namespace unit;
using testing::ElementsAre;

namespace {

constexpr auto kMilliseconds = [](std::int64_t count) { return std::chrono::milliseconds(count); };

class QueueOrder : public QueueTest
{
};

TEST_F(QueueOrder, FirstTaskGetsIdOneAndIdsGoUpByOne)
{
    EXPECT_EQ(add("a"), 1u);
    EXPECT_EQ(add("b"), 2u);
    EXPECT_EQ(add("c"), 3u);
}

TEST_F(QueueOrder, HundredTwentyEightTasksMayWaitBesideTheRunningOne)
{
    queue.start();
    holdWorker();
    for (std::uint32_t i = 0; i < 128; ++i)
        ASSERT_EQ(add("t" + std::to_string(i)), i + 2);
    EXPECT_EQ(add("one too many"), 0u);
    EXPECT_EQ(queue.getPendingTasks(), 128u);
}

TEST_F(QueueOrder, ARefusedAddLeavesNameAndBodyWithTheCallerAndConsumesNoId)
{
    for (int i = 0; i < 128; ++i)
        add("t");
    std::string name = "a name that is too long to be stored inside the string object itself";
    int calls = 0;
    std::function<void(ExecutionReason)> body = [&calls](ExecutionReason) { ++calls; };
    int notifications = 0;
    interposed::onNotify([&notifications] { ++notifications; });

    EXPECT_EQ(queue.addTask(std::move(name), std::move(body), -5ms), 0u);

    EXPECT_EQ(name, "a name that is too long to be stored inside the string object itself");
    ASSERT_TRUE(static_cast<bool>(body));
    body(ExecutionReason::UNDELAYED);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(queue.nextId, 129u);
    EXPECT_EQ(notifications, 0);
}

TEST_F(QueueOrder, ATaskIsAcceptedAgainOnceTheWorkerHasTakenOne)
{
    queue.start();
    holdWorker();
    for (int i = 0; i < 128; ++i)
        add("t");
    ASSERT_EQ(add("refused"), 0u);
    gate.open();
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_EQ(add("accepted"), 130u);
}

TEST_F(QueueOrder, IdsWrapFromTheLargestToOneAndAreNeverZero)
{
    queue.nextId = 4294967294u;
    EXPECT_EQ(add("a"), 4294967294u);
    EXPECT_EQ(add("b"), 4294967295u);
    EXPECT_EQ(add("c"), 1u);
    EXPECT_EQ(add("d"), 2u);
}

TEST_F(QueueOrder, TasksWithoutDelayRunInTheOrderOfAdding)
{
    queue.start();
    holdWorker();
    for (const char* name : {"a", "b", "c", "d"}) {
        add(name);
        const auto before = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() == before) {
        }
    }
    gate.open();
    ASSERT_TRUE(awaitRuns(4));
    EXPECT_THAT(runs(), ElementsAre("a", "b", "c", "d"));
}

TEST_F(QueueOrder, AmongEqualPlannedTimesTheNewestGoesInFront)
{
    interposed::HeldClock clock(10s);
    add("first");
    add("second");
    add("third");
    EXPECT_THAT(waiting(), ElementsAre("third", "second", "first"));
}

TEST_F(QueueOrder, AnEqualPlannedTimeIsPutBehindEarlierAndBeforeEqualRecords)
{
    interposed::HeldClock clock(10s);
    add("early");
    clock.advance(1ns);
    add("equal 1");
    add("late", 1ms);
    add("equal 2");
    EXPECT_THAT(waiting(), ElementsAre("early", "equal 2", "equal 1", "late"));
}

TEST_F(QueueOrder, ADelayedTaskGoesBehindDueOnesAndALaterUndelayedTaskInFrontOfIt)
{
    interposed::HeldClock clock(10s);
    for (const char* name : {"a", "b", "c"}) {
        add(name);
        clock.advance(1us);
    }
    add("delayed", 100ms);
    clock.advance(1us);
    add("undelayed");
    EXPECT_THAT(waiting(), ElementsAre("a", "b", "c", "undelayed", "delayed"));
}

TEST_F(QueueOrder, AShortDelayOvertakesALongOne)
{
    interposed::HeldClock clock(10s);
    add("long", 500ms);
    add("short", 20ms);
    add("middle", 100ms);
    EXPECT_THAT(waiting(), ElementsAre("short", "middle", "long"));
}

TEST_F(QueueOrder, PlannedTimeIsTheClockPlusTheDelayInMilliseconds)
{
    interposed::HeldClock clock(10s);
    add("undelayed");
    add("delayed", 1500ms);
    add("past", -3ms);
    EXPECT_EQ(queue.tasks[0].plannedTime.time_since_epoch(), 9'997'000'000ns);
    EXPECT_EQ(queue.tasks[1].plannedTime.time_since_epoch(), 10'000'000'000ns);
    EXPECT_EQ(queue.tasks[2].plannedTime.time_since_epoch(), 11'500'000'000ns);
}

TEST_F(QueueOrder, ATaskIsDelayedWhenItsDelayIsNotZero)
{
    interposed::HeldClock clock(10s);
    add("past", -1ms);
    add("undelayed");
    add("delayed", 1ms);
    EXPECT_TRUE(queue.tasks[0].isDelayed);
    EXPECT_FALSE(queue.tasks[1].isDelayed);
    EXPECT_TRUE(queue.tasks[2].isDelayed);
}

TEST_F(QueueOrder, TheClockIsReadBeforeTheLockIsTaken)
{
    std::thread adder;
    std::atomic<bool> added{false};
    {
        const std::lock_guard<std::mutex> lock(queue.mutex);
        const std::uint64_t before = interposed::allClockReads();
        adder = std::thread([&] {
            add("a");
            added = true;
        });
        EXPECT_TRUE(eventually([&] { return interposed::allClockReads() > before; }));
        EXPECT_FALSE(added);
    }
    adder.join();
    EXPECT_TRUE(added);
}

struct ExtremeDelay
{
    const char* name;
    std::int64_t delayMs;
    std::int64_t plannedNs;
};

class ExtremeDelays : public QueueTest, public testing::WithParamInterface<ExtremeDelay>
{
};

TEST_P(ExtremeDelays, AreCutToTheRangeOfTheClock)
{
    interposed::HeldClock clock(10s);
    ASSERT_EQ(add("extreme", kMilliseconds(GetParam().delayMs)), 1u);
    EXPECT_EQ(queue.tasks.front().plannedTime.time_since_epoch().count(), GetParam().plannedNs);
    EXPECT_TRUE(queue.tasks.front().isDelayed);
}

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

INSTANTIATE_TEST_SUITE_P(Table, ExtremeDelays,
                         testing::Values(ExtremeDelay{"greatest", kMax, kMax}, ExtremeDelay{"least", kMin, kMin},
                                         ExtremeDelay{"wholeRange", 9223372036854, kMax},
                                         ExtremeDelay{"lastThatFitsBehindTenSeconds", 9223372026854,
                                                      9223372036854000000},
                                         ExtremeDelay{"firstThatDoesNot", 9223372026855, kMax},
                                         ExtremeDelay{"earliestThatFits", -9223372036854, -9223372026854000000},
                                         ExtremeDelay{"firstThatIsTooEarly", -9223372036855, kMin}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(QueueOrder, ExtremeDelaysKeepTheirPlaceInTheOrder)
{
    interposed::HeldClock clock(10s);
    add("last", kMilliseconds(kMax));
    add("now");
    add("first", kMilliseconds(kMin));
    EXPECT_THAT(waiting(), ElementsAre("first", "now", "last"));
}

TEST_F(QueueOrder, TheLeastDelayRunsAtOnceAndTheGreatestDoesNotRunAtAll)
{
    add("never", kMilliseconds(kMax));
    add("at once", kMilliseconds(kMin));
    queue.start();
    ASSERT_TRUE(awaitRuns(1));
    queue.stop();
    EXPECT_THAT(runs(), ElementsAre("at once"));
    EXPECT_THAT(waiting(), ElementsAre("never"));
}

}  // namespace
