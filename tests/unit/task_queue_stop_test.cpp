#include "unit/QueueFixture.h"

using namespace unit;
using testing::ElementsAre;

namespace {

class QueueStop : public QueueTest
{
};

TEST_F(QueueStop, ReturnsAfterTheRunningBodyAndLeavesWaitingTasksUncalled)
{
    queue.start();
    std::atomic<bool> bodyDone{false};
    queue.addTask(
        "long",
        [&](ExecutionReason) {
            gate.pass();
            bodyDone = true;
        },
        0ms);
    ASSERT_TRUE(gate.awaitReached());
    add("waiting 1");
    add("waiting 2");
    std::atomic<bool> stopped{false};
    bool doneAtStop = false;
    std::thread stopper([&] {
        queue.stop();
        doneAtStop = bodyDone;
        stopped = true;
    });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    EXPECT_FALSE(stopped);
    gate.open();
    stopper.join();
    EXPECT_TRUE(doneAtStop);
    EXPECT_TRUE(runs().empty());
    EXPECT_THAT(waiting(), ElementsAre("waiting 1", "waiting 2"));
    EXPECT_FALSE(queue.worker.joinable());
}

TEST_F(QueueStop, LeavesNothingRunningBehind)
{
    queue.start();
    add("a");
    ASSERT_TRUE(awaitRuns(1));
    queue.stop();
    EXPECT_EQ(queue.getRunningTaskId(), 0u);
    EXPECT_EQ(queue.getRunningTaskName(), "No running task");
}

TEST_F(QueueStop, DoesNothingOnAStoppedQueue)
{
    queue.stop();
    EXPECT_FALSE(queue.running);
    queue.start();
    queue.stop();
    queue.stop();
    EXPECT_FALSE(queue.running);
}

TEST_F(QueueStop, StartDoesNothingOnARunningQueue)
{
    queue.start();
    const std::thread::id worker = queue.worker.get_id();
    queue.start();
    EXPECT_EQ(queue.worker.get_id(), worker);
}

TEST_F(QueueStop, AStoppedQueueCanBeStartedAgainAndGoesOnWithTasksAndIds)
{
    queue.start();
    holdWorker();
    add("a");
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    gate.open();
    stopper.join();
    EXPECT_EQ(add("b"), 3u);
    queue.start();
    ASSERT_TRUE(awaitRuns(2));
    EXPECT_THAT(runs(), ElementsAre("a", "b"));
}

TEST_F(QueueStop, StartJoinsAWorkerThatNobodyJoined)
{
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(1));
    queue.running = false;
    queue.start();
    EXPECT_TRUE(queue.running);
    add("a");
    EXPECT_TRUE(awaitRuns(1));
}

TEST_F(QueueStop, StartCanBeTriedAgainWhenTheSystemGaveNoThread)
{
    interposed::refuseThreads(true);
    EXPECT_THROW(queue.start(), std::system_error);
    interposed::refuseThreads(false);
    EXPECT_FALSE(queue.running);
    queue.start();
    add("a");
    EXPECT_TRUE(awaitRuns(1));
}

TEST_F(QueueStop, NotifiesWithoutTheLock)
{
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(1));
    std::atomic<int> notifications{0};
    interposed::onNotify([&] { ++notifications; });
    std::thread stopper;
    {
        const std::lock_guard<std::mutex> lock(queue.mutex);
        stopper = std::thread([&] { queue.stop(); });
        EXPECT_TRUE(eventually([&] { return notifications == 1; }));
        EXPECT_FALSE(queue.running);
    }
    stopper.join();
}

TEST_F(QueueStop, WakesAWorkerThatIsAboutToTakeTheLock)
{
    std::atomic<bool> aboutToLock{false};
    std::atomic<bool> notified{false};
    std::thread stopper;
    interposed::onNotify([&] { notified = true; });
    interposed::onLock(queue.mutex.native_handle(), [&] {
        if (aboutToLock.exchange(true))
            return;
        // The worker is past its look at the flag; only now comes the stop, and goes as far as it can without the lock.
        stopper = std::thread([&] { queue.stop(); });
        eventually([&] { return notified.load(); });
    });
    queue.start();
    ASSERT_TRUE(eventually([&] { return aboutToLock.load(); }));
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    queue.stop();
    stopper.join();
    EXPECT_FALSE(queue.worker.joinable());
}

TEST_F(QueueStop, WakesAWorkerThatIsAboutToWait)
{
    std::atomic<bool> once{false};
    std::atomic<bool> notified{false};
    std::atomic<bool> started{false};
    std::atomic<bool> stopping{false};
    std::thread stopper;
    interposed::onNotify([&] { notified = true; });
    interposed::onWait([&] {
        if (once.exchange(true))
            return;
        // The worker has seen that it may go on and holds the lock; only now comes the stop, and its first
        // notification finds nobody waiting.
        eventually([&] { return started.load(); });
        stopper = std::thread([&] { queue.stop(); });
        eventually([&] { return notified.load(); });
        stopping = true;
    });
    queue.start();
    started = true;
    ASSERT_TRUE(eventually([&] { return stopping.load(); }));
    stopper.join();
    EXPECT_FALSE(queue.worker.joinable());
}

TEST_F(QueueStop, ReturnsToEveryCallerAfterTheRunningBody)
{
    queue.start();
    std::atomic<bool> bodyDone{false};
    queue.addTask(
        "long",
        [&](ExecutionReason) {
            gate.pass();
            bodyDone = true;
        },
        0ms);
    ASSERT_TRUE(gate.awaitReached());
    std::thread first([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    std::atomic<int> arrived{0};
    std::atomic<int> returned{0};
    std::atomic<int> returnedEarly{0};
    interposed::onLock(queue.startStopMutex.native_handle(), [&] { ++arrived; });
    const auto stopToo = [&] {
        queue.stop();
        returnedEarly += !bodyDone;
        ++returned;
    };
    std::thread second(stopToo);
    std::thread third(stopToo);
    EXPECT_TRUE(eventually([&] { return arrived == 2; }));
    EXPECT_EQ(returned, 0);
    gate.open();
    first.join();
    second.join();
    third.join();
    EXPECT_EQ(returnedEarly, 0);
    EXPECT_FALSE(queue.worker.joinable());
}

TEST_F(QueueStop, AStartThatMeetsItWaitsForTheEndAndThenStarts)
{
    queue.start();
    holdWorker();
    add("waiting");
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    std::atomic<bool> arrived{false};
    interposed::onLock(queue.startStopMutex.native_handle(), [&] { arrived = true; });
    std::thread starter([&] { queue.start(); });
    EXPECT_TRUE(eventually([&] { return arrived.load(); }));
    EXPECT_FALSE(queue.running);
    gate.open();
    stopper.join();
    starter.join();
    EXPECT_TRUE(queue.running);
    EXPECT_TRUE(awaitRuns(1));
}

TEST_F(QueueStop, ABodyThatStartsOrStopsAQueueThatIsBeingStoppedIsNotHeldUp)
{
    queue.start();
    std::atomic<bool> runningAfterwards{true};
    queue.addTask(
        "meddler",
        [&](ExecutionReason) {
            queue.start();  // it runs: nothing to do
            gate.pass();
            queue.stop();
            queue.start();
            runningAfterwards = queue.running.load();
        },
        0ms);
    ASSERT_TRUE(gate.awaitReached());
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    gate.open();
    stopper.join();
    EXPECT_FALSE(runningAfterwards);
    EXPECT_FALSE(queue.worker.joinable());
}

TEST_F(QueueStop, ABodyThatStopsItsRunningQueueIsToldSoAndIsTheLast)
{
    queue.start();  // and has started: only then the body finds a thread to wait for
    std::error_code told;
    queue.addTask(
        "stopper",
        [&](ExecutionReason) {
            try {
                queue.stop();
            } catch (const std::system_error& error) {
                told = error.code();
            }
            gate.pass();
        },
        0ms);
    add("waiting");
    ASSERT_TRUE(gate.awaitReached());
    gate.open();
    queue.stop();
    EXPECT_EQ(told, std::errc::resource_deadlock_would_occur);
    EXPECT_THAT(runs(), ElementsAre());
    EXPECT_THAT(waiting(), ElementsAre("waiting"));
}

using QueueStopDeathTest = QueueStop;

TEST_F(QueueStopDeathTest, ABodyThatStopsItsRunningQueueEndsTheProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Queue mortal("Mortal");
            mortal.addTask(
                "t", [&](ExecutionReason) { mortal.stop(); }, 0ms);
            mortal.start();
            eventually([] { return false; });
        },
        "terminate called");
}

TEST_F(QueueStop, StartsAndStopsFromSeveralThreadsMeetWithoutHarm)
{
    std::atomic<std::uint32_t> added{0};
    std::vector<std::thread> meddlers;
    for (int number = 0; number < 4; ++number)
        meddlers.emplace_back([&, number] {
            for (int turn = 0; turn < 200; ++turn) {
                if ((turn + number) % 2 == 0)
                    queue.start();
                else
                    queue.stop();
                added += add("t") != 0;
            }
        });
    for (std::thread& meddler : meddlers)
        meddler.join();
    queue.start();
    EXPECT_TRUE(awaitRuns(added));
    EXPECT_EQ(runs().size(), added);
}

TEST_F(QueueStop, TenThousandQueuesComeAndGo)
{
    for (int turn = 0; turn < 10'000; ++turn) {
        Queue brief("Brief");
        brief.start();
    }
}

TEST_F(QueueStop, DestructionDestroysWaitingTasksUncalledFrontToBack)
{
    std::vector<std::string> destroyed;
    std::vector<std::string> expected;
    int calls = 0;
    {
        interposed::HeldClock clock(100s);
        Queue doomed("Doomed");
        // Added back to front, so the order of destruction is neither that of adding nor that of memory.
        for (int i = 0; i < 128; ++i) {
            auto stone = std::make_shared<Tombstone>(std::to_string(i),
                                                     [&](const std::string& name) { destroyed.push_back(name); });
            doomed.addTask(
                std::to_string(i), [stone, &calls](ExecutionReason) { ++calls; }, std::chrono::milliseconds(1000 - i));
            expected.insert(expected.begin(), std::to_string(i));
        }
    }
    EXPECT_EQ(destroyed, expected);
    EXPECT_EQ(calls, 0);
}

TEST_F(QueueStop, DestructionStopsFirst)
{
    std::atomic<bool> bodyDone{false};
    std::atomic<bool> waitingGone{false};
    bool doneBefore = false;
    auto stone = std::make_shared<Tombstone>("waiting", [&](const std::string&) {
        doneBefore = bodyDone;
        waitingGone = true;
    });
    std::thread destroyer;
    {
        auto doomed = std::make_unique<Queue>("Doomed");
        doomed->start();
        doomed->addTask(
            "long",
            [&](ExecutionReason) {
                gate.pass();
                bodyDone = true;
            },
            0ms);
        ASSERT_TRUE(gate.awaitReached());
        doomed->addTask(
            "waiting", [held = std::move(stone)](ExecutionReason) {}, 0ms);
        destroyer = std::thread([owned = std::move(doomed)]() mutable { owned.reset(); });
    }
    EXPECT_FALSE(waitingGone);
    gate.open();
    destroyer.join();
    EXPECT_TRUE(waitingGone);
    EXPECT_TRUE(doneBefore);
}

}  // namespace
