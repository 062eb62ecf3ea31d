#include "unit/QueueFixture.h"

using namespace unit;
using testing::ElementsAre;

namespace {

class QueueWorker : public QueueTest
{
};

TEST_F(QueueWorker, DoesNotRunATaskBeforeItIsStarted)
{
    add("a");
    EXPECT_FALSE(queue.worker.joinable());
    EXPECT_FALSE(queue.running);
    queue.start();
    EXPECT_TRUE(awaitRuns(1));
}

TEST_F(QueueWorker, IsWokenByATaskAndPassesReasonOne)
{
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(1));
    add("a");
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_THAT(reasons(), ElementsAre(1));
}

TEST_F(QueueWorker, PassesReasonTwoForAPositiveDelay)
{
    queue.start();
    add("a", 1ms);
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_THAT(reasons(), ElementsAre(2));
}

TEST_F(QueueWorker, PassesReasonTwoForANegativeDelay)
{
    queue.start();
    add("a", -1ms);
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_THAT(reasons(), ElementsAre(2));
}

// The one test of this rule that takes its time.
TEST_F(QueueWorker, RunsATaskWithADelayNotBeforeItAndAnUndelayedOneFirst)
{
    queue.start();
    const auto added = std::chrono::steady_clock::now();
    std::atomic<std::int64_t> ranAfterNs{0};
    queue.addTask(
        "delayed",
        [&](ExecutionReason reason) {
            ranAfterNs = (std::chrono::steady_clock::now() - added).count();
            record("delayed", reason);
        },
        200ms);
    add("undelayed");
    ASSERT_TRUE(awaitRuns(2));
    EXPECT_THAT(runs(), ElementsAre("undelayed", "delayed"));
    EXPECT_THAT(reasons(), ElementsAre(1, 2));
    EXPECT_GE(ranAfterNs, 200'000'000);
}

TEST_F(QueueWorker, IsTheSameThreadForAllTasks)
{
    queue.start();
    const std::thread::id worker = queue.worker.get_id();
    std::vector<std::thread::id> seen;
    for (int i = 0; i < 5; ++i)
        queue.addTask(
            "t",
            [&](ExecutionReason reason) {
                seen.push_back(std::this_thread::get_id());
                record("t", reason);
            },
            0ms);
    ASSERT_TRUE(awaitRuns(5));
    EXPECT_THAT(seen, testing::Each(worker));
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST_F(QueueWorker, PublishesIdAndNameWhileABodyRuns)
{
    queue.start();
    queue.nextId = 77;
    std::uint32_t idInBody = 0;
    std::string nameInBody;
    const std::uint32_t id = queue.addTask(
        "kelarc/KelArc.1: a call with a rather long name()",
        [&](ExecutionReason reason) {
            idInBody = queue.getRunningTaskId();
            nameInBody = queue.getRunningTaskName();
            record("t", reason);
        },
        0ms);
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_EQ(id, 77u);
    EXPECT_EQ(idInBody, 77u);
    EXPECT_EQ(nameInBody, "kelarc/KelArc.1: a call with a rather long name()");
    EXPECT_TRUE(eventually([&] { return queue.getRunningTaskName() == "No running task"; }));
    EXPECT_EQ(queue.getRunningTaskId(), 0u);
}

TEST_F(QueueWorker, PublishesToOtherThreadsToo)
{
    queue.start();
    holdWorker();
    EXPECT_EQ(queue.getRunningTaskId(), 1u);
    EXPECT_EQ(queue.getRunningTaskName(), "held");
    EXPECT_EQ(queue.getPendingTasks(), 0u);
}

TEST_F(QueueWorker, PublishesIdAndNameBeforeAnybodyCanReadEither)
{
    queue.start();
    std::atomic<int> published{0};
    std::atomic<int> halfPublished{0};
    interposed::onUnlock(queue.mutex.native_handle(), [&] {  // with the lock still held
        const std::uint32_t id = queue.runningTaskId;
        const std::string_view name = queue.runningTaskName;
        published += id == 1 && name == "held";
        halfPublished += (id != 0) != (name == "held");
    });
    holdWorker();
    EXPECT_EQ(published, 1);
    EXPECT_EQ(halfPublished, 0);
}

TEST_F(QueueWorker, NeverShowsAnIdBesideTheIdleName)
{
    queue.start();
    for (int turn = 0; turn < 500; ++turn) {
        Gate door;
        queue.addTask(
            "t", [&](ExecutionReason) { door.pass(); }, 0ms);
        ASSERT_TRUE(door.awaitReached());
        door.open();
        while (queue.getRunningTaskName() != "No running task") {
        }
        ASSERT_EQ(queue.getRunningTaskId(), 0u);
    }
}

TEST_F(QueueWorker, ResetsIdAndNameAtOnceWithoutTheLock)
{
    queue.start();
    holdWorker();
    const std::lock_guard<std::mutex> lock(queue.mutex);
    EXPECT_EQ(queue.publishedName(), "held");
    gate.open();
    EXPECT_TRUE(eventually([&] { return queue.runningTaskId == 0; }));
    EXPECT_EQ(queue.publishedName(), "No running task");
}

TEST_F(QueueWorker, DestroysAFinishedBodyOnItsThreadAfterIdAndNameWereReset)
{
    queue.start();
    std::thread::id where;
    std::uint32_t id = 99;
    std::string name;
    std::atomic<bool> returned{false};
    std::atomic<bool> returnedBefore{false};
    std::atomic<bool> dead{false};
    auto body = std::make_shared<Tombstone>("body", [&](const std::string&) {
        where = std::this_thread::get_id();
        id = queue.getRunningTaskId();
        name = queue.getRunningTaskName();
        returnedBefore = returned.load();
        dead = true;
    });
    queue.addTask(
        "t", [held = std::move(body), &returned](ExecutionReason) { returned = true; }, 0ms);
    ASSERT_TRUE(eventually([&] { return dead.load(); }));
    EXPECT_TRUE(returnedBefore);
    EXPECT_EQ(where, queue.worker.get_id());
    EXPECT_EQ(id, 0u);
    EXPECT_EQ(name, "No running task");
}

TEST_F(QueueWorker, KeepsTheNameOfAnEndedTaskWholeUntilTheNextIsPublished)
{
    queue.start();
    holdWorker();
    const std::string longName(200, 'n');  // in memory of its own, whose release a sanitizer would see
    Gate door;
    queue.addTask(
        std::string(longName), [&](ExecutionReason) { door.pass(); }, 0ms);
    gate.open();
    ASSERT_TRUE(door.awaitReached());
    const std::lock_guard<std::mutex> lock(queue.mutex);
    const std::string_view name = queue.publishedName();  // as a reader that copies slowly
    door.open();
    ASSERT_TRUE(eventually([&] { return queue.runningTaskId == 0; }));
    EXPECT_EQ(name, longName);
}

TEST_F(QueueWorker, DestroysAFinishedBodyBeforeItRunsTheNext)
{
    queue.start();
    holdWorker();
    auto body =
        std::make_shared<Tombstone>("body", [&](const std::string&) { record("body gone", ExecutionReason{}); });
    queue.addTask(
        "t", [this, held = std::move(body)](ExecutionReason reason) { record("t", reason); }, 0ms);
    add("next", 1ms);
    gate.open();
    ASSERT_TRUE(awaitRuns(3));
    EXPECT_THAT(runs(), ElementsAre("t", "body gone", "next"));
}

TEST_F(QueueWorker, DestroysTheLastBodyWhenItStops)
{
    queue.start();
    std::atomic<bool> dead{false};
    std::thread::id where;
    auto body = std::make_shared<Tombstone>("body", [&](const std::string&) {
        where = std::this_thread::get_id();
        dead = true;
    });
    queue.addTask(
        "t", [this, held = std::move(body)](ExecutionReason) { gate.pass(); }, 0ms);
    ASSERT_TRUE(gate.awaitReached());
    const std::thread::id worker = queue.worker.get_id();
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    EXPECT_FALSE(dead);
    gate.open();
    stopper.join();
    EXPECT_TRUE(dead);
    EXPECT_EQ(where, worker);
}

TEST_F(QueueWorker, SkipsATaskWithoutABody)
{
    queue.start();
    holdWorker();
    EXPECT_EQ(queue.addTask("empty", {}, 0ms), 2u);
    add("next");
    EXPECT_THAT(waiting(), ElementsAre("empty", "next"));
    gate.open();
    ASSERT_TRUE(awaitRuns(1));
    EXPECT_THAT(runs(), ElementsAre("next"));
    EXPECT_EQ(queue.getPendingTasks(), 0u);
}

TEST_F(QueueWorker, WaitsForTheNextTaskAfterOneWithoutABody)
{
    interposed::WaitLog log;
    queue.start();
    ASSERT_TRUE(log.awaitCount(1));
    queue.addTask("empty", {}, 0ms);
    ASSERT_TRUE(log.awaitCount(2));
    EXPECT_EQ(queue.getRunningTaskId(), 0u);
    EXPECT_EQ(queue.getRunningTaskName(), "No running task");
    EXPECT_EQ(queue.getPendingTasks(), 0u);
    EXPECT_GT(log.waits()[1], 23h);
}

TEST_F(QueueWorker, StopsBehindATaskWithoutABody)
{
    queue.start();
    holdWorker();
    queue.addTask("empty", {}, 0ms);
    add("next");
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    gate.open();
    stopper.join();
    EXPECT_THAT(waiting(), ElementsAre("empty", "next"));
}

TEST_F(QueueWorker, LeavesNoNameBehindWhenItEnds)
{
    queue.start();
    holdWorker();
    std::thread stopper([&] { queue.stop(); });
    EXPECT_TRUE(eventually([&] { return !queue.running; }));
    gate.open();
    stopper.join();
    EXPECT_EQ(queue.runningTaskName, "No running task");
    EXPECT_EQ(queue.runningTaskId, 0u);
}

TEST_F(QueueWorker, LetsABodyAddATaskThatRunsAfterIt)
{
    queue.start();
    queue.addTask(
        "outer",
        [this](ExecutionReason reason) {
            add("inner");
            record("outer", reason);
        },
        0ms);
    ASSERT_TRUE(awaitRuns(2));
    EXPECT_THAT(runs(), ElementsAre("outer", "inner"));
}

TEST_F(QueueWorker, HoldsNoLockWhileABodyRuns)
{
    queue.start();
    holdWorker();
    EXPECT_TRUE(queue.mutex.try_lock());
    queue.mutex.unlock();
}

TEST_F(QueueWorker, RunsOneBodyAtATime)
{
    queue.start();
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::vector<std::thread> adders;
    for (int adder = 0; adder < 4; ++adder)
        adders.emplace_back([&] {
            for (int i = 0; i < 25; ++i)
                queue.addTask(
                    "t",
                    [&](ExecutionReason reason) {
                        const int now = ++inside;
                        if (now > most)
                            most = now;
                        record("t", reason);
                        --inside;
                    },
                    std::chrono::milliseconds(i % 3));
        });
    for (std::thread& adder : adders)
        adder.join();
    ASSERT_TRUE(awaitRuns(100));
    EXPECT_EQ(most, 1);
}

using QueueWorkerDeathTest = QueueWorker;

TEST_F(QueueWorkerDeathTest, ABodyThatThrowsEndsTheProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Queue mortal("Mortal");
            mortal.addTask(
                "t", [](ExecutionReason) { throw 1; }, 0ms);
            mortal.start();
            eventually([] { return false; });
        },
        "terminate called");
}

TEST_F(QueueWorker, ReadersAndAddersRaceWithoutHarm)
{
    queue.start();
    std::atomic<bool> done{false};
    std::thread reader([&] {
        while (!done) {
            queue.getRunningTaskId();
            queue.getRunningTaskName();
            queue.getPendingTasks();
            queue.getDelayedExecutionTime();
            queue.tasksToString();
        }
    });
    std::uint64_t accepted = 0;
    while (accepted < 2000)
        if (add("a name that does not fit into the string object itself, so it is moved about") != 0)
            ++accepted;
    EXPECT_TRUE(awaitRuns(2000));
    done = true;
    reader.join();
    EXPECT_EQ(runs().size(), 2000u);
}

}  // namespace
