#include "unit/QueueFixture.h"

#include <atomic>
#include <memory>

using namespace unit;
using testing::Each;
using testing::ElementsAre;

namespace {

class QueueWait : public QueueTest
{
};

TEST_F(QueueWait, AnIdleWorkerWaitsTwentyFourHours)
{
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(1));
    const auto waits = log.waits();
    EXPECT_GT(waits[0], 24h - 1min);
    EXPECT_LE(waits[0], 24h);
}

TEST_F(QueueWait, AFrontAheadIsWaitedForInWholeMillisecondsTruncated)
{
    interposed::HeldClock clock(100s);
    add("delayed", 1500ms);
    clock.advance(300us);
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(3));
    EXPECT_THAT(log.waits(), Each(1499ms));
    EXPECT_TRUE(runs().empty());
}

TEST_F(QueueWait, TheLastMillisecondIsARowOfZeroWaitsOfTheSystemAndNotSpunThrough)
{
    interposed::HeldClock clock(100s);
    add("delayed", 5ms);
    clock.advance(4001us);
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(3));
    EXPECT_THAT(log.waits(), Each(0ms));
    EXPECT_TRUE(runs().empty());
}

TEST_F(QueueWait, ATaskIsDueExactlyWhenTheClockReachesItsPlannedTime)
{
    interposed::HeldClock clock(100s);
    add("delayed", 5ms);
    clock.advance(4'999'999ns);
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(3));
    EXPECT_TRUE(runs().empty());
    clock.advance(1ns);
    EXPECT_TRUE(awaitRuns(1));
}

TEST_F(QueueWait, AFarFrontIsWaitedForInPiecesThatTheSystemCanCount)
{
    interposed::HeldClock clock(100s);
    add("delayed", std::chrono::hours(24 * 365 * 200));
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(2));
    EXPECT_THAT(log.waits(), Each(24h));
    EXPECT_TRUE(runs().empty());
}

TEST_F(QueueWait, ADueTaskCostsNoTimedWaitOfTheSystem)
{
    queue.start();
    holdWorker();
    for (int i = 0; i < 100; ++i)
        add("t");
    interposed::WaitLog log;
    queue.addTask(
        "last",
        [&](ExecutionReason reason) {
            EXPECT_TRUE(log.waits().empty());
            record("last", reason);
        },
        0ms);
    gate.open();
    ASSERT_TRUE(awaitRuns(101));
}

TEST_F(QueueWait, TheWorkerTakesTheLockOnceForADueTask)
{
    queue.start();
    holdWorker();
    for (int i = 0; i < 10; ++i)
        add("t");
    // Shared: the worker may still be counting when the test has ended.
    const auto locksByWorker = std::make_shared<std::atomic<int>>(0);
    int locksAtLast = 0;
    queue.addTask(
        "last",
        [&](ExecutionReason reason) {
            locksAtLast = *locksByWorker;
            record("last", reason);
        },
        0ms);
    interposed::onLock(queue.mutex.native_handle(), [locksByWorker, worker = queue.worker.get_id()] {
        if (std::this_thread::get_id() == worker)
            ++*locksByWorker;
    });
    gate.open();
    ASSERT_TRUE(awaitRuns(11));
    EXPECT_EQ(locksAtLast, 11);
}

TEST_F(QueueWait, ANewFrontWakesTheWorkerAfterTheLockWasReleased)
{
    queue.start();
    holdWorker();
    int notifications = 0;
    bool wasFree = false;
    interposed::onNotify([&] {
        ++notifications;
        wasFree = queue.mutex.try_lock();
        if (wasFree)
            queue.mutex.unlock();
    });
    add("front");
    EXPECT_EQ(notifications, 1);
    EXPECT_TRUE(wasFree);
}

TEST_F(QueueWait, ATaskBehindTheFrontWakesNobody)
{
    interposed::HeldClock clock(100s);
    add("front");
    clock.advance(1ms);
    int notifications = 0;
    interposed::onNotify([&] { ++notifications; });
    add("behind");
    add("far behind", 1000ms);
    EXPECT_EQ(notifications, 0);
    clock.set(50s);
    add("new front");
    EXPECT_EQ(notifications, 1);
}

TEST_F(QueueWait, AnEarlierFrontCutsTheWaitForALaterOneShort)
{
    interposed::WaitLog log;
    queue.start();
    add("far", 1h);
    ASSERT_TRUE(eventually([&] { return !log.waits().empty() && log.waits().back() <= 1h; }));
    add("near");
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_THAT(runs(), ElementsAre("near"));
}

}  // namespace
