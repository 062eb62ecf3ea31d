#include "unit/QueueFixture.h"

#include <limits>

using namespace unit;

namespace {

class QueueReaders : public QueueTest
{
};

TEST_F(QueueReaders, AnswerForAnEmptyQueue)
{
    EXPECT_EQ(queue.getRunningTaskId(), 0u);
    EXPECT_EQ(queue.getRunningTaskName(), "No running task");
    EXPECT_EQ(queue.getPendingTasks(), 0u);
    EXPECT_EQ(queue.getDelayedExecutionTime(), 0);
    EXPECT_EQ(queue.tasksToString(), "All tasks (0):\n");
}

TEST_F(QueueReaders, CountWaitingTasksOnly)
{
    queue.start();
    holdWorker();
    add("a");
    add("b", 1h);
    EXPECT_EQ(queue.getPendingTasks(), 2u);
}

TEST_F(QueueReaders, DoNotCountARecordWithoutAnId)
{
    queue.tasks.emplace(0, 0u, std::string("no id"), nullptr, std::chrono::steady_clock::time_point{}, false);
    add("a");
    EXPECT_EQ(queue.getPendingTasks(), 1u);
    EXPECT_EQ(queue.tasksToString().substr(0, 15), "All tasks (2):\n");
}

TEST_F(QueueReaders, TellTheTimeToTheFrontTruncatedTowardZero)
{
    interposed::HeldClock clock(100s);
    add("a", 5000ms);
    add("b", 9000ms);
    EXPECT_EQ(queue.getDelayedExecutionTime(), 5000);
    clock.advance(1ns);
    EXPECT_EQ(queue.getDelayedExecutionTime(), 4999);
    clock.set(105s);
    EXPECT_EQ(queue.getDelayedExecutionTime(), 0);
    clock.advance(999'999ns);
    EXPECT_EQ(queue.getDelayedExecutionTime(), 0);
    clock.advance(1ns);
    EXPECT_EQ(queue.getDelayedExecutionTime(), -1);
}

TEST_F(QueueReaders, TellTheTimeOfAnUndelayedFrontToo)
{
    interposed::HeldClock clock(100s);
    add("a");
    clock.advance(12ms);
    EXPECT_EQ(queue.getDelayedExecutionTime(), -12);
}

TEST_F(QueueReaders, TellTheLimitsForExtremeTasks)
{
    interposed::HeldClock clock(100s);
    add("a", std::chrono::milliseconds(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(queue.getDelayedExecutionTime(), 9223371936854);
    add("b", std::chrono::milliseconds(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(queue.getDelayedExecutionTime(), -9223372036854);
}

TEST_F(QueueReaders, ListWaitingTasksInTheOrderOfExecution)
{
    interposed::HeldClock clock(100s);
    queue.nextId = 1234567;
    add("kelarc/KelArc.183: ARC_Close()");
    add("it's \"quoted\"", 2500ms);
    clock.advance(12ms);
    add("late");
    EXPECT_EQ(queue.tasksToString(),
              "All tasks (3):\n"
              "\tTask id: 1234567, name: 'kelarc/KelArc.183: ARC_Close()', isDelayed: false, "
              "execution was planned in: -12 ms\n"
              "\tTask id: 1234569, name: 'late', isDelayed: false, execution was planned in: 0 ms\n"
              "\tTask id: 1234568, name: 'it's \"quoted\"', isDelayed: true, execution was planned in: 2488 ms\n");
}

TEST_F(QueueReaders, ReadTheClockAfreshForEveryLine)
{
    interposed::HeldClock clock(100s);
    add("a", 1000ms);
    add("b", 2000ms);
    clock.advanceOnRead(100ms);
    EXPECT_EQ(queue.tasksToString(), "All tasks (2):\n"
                                     "\tTask id: 1, name: 'a', isDelayed: true, execution was planned in: 1000 ms\n"
                                     "\tTask id: 2, name: 'b', isDelayed: true, execution was planned in: 1900 ms\n");
}

TEST_F(QueueReaders, WaitForTheLock)
{
    std::atomic<int> answered{0};
    std::vector<std::thread> readers;
    {
        const std::lock_guard<std::mutex> lock(queue.mutex);
        std::atomic<int> atLock{0};
        interposed::onLock(queue.mutex.native_handle(), [&] { ++atLock; });
        readers.emplace_back([&] {
            queue.getRunningTaskId();
            ++answered;
        });
        readers.emplace_back([&] {
            queue.getRunningTaskName();
            ++answered;
        });
        readers.emplace_back([&] {
            queue.getPendingTasks();
            ++answered;
        });
        readers.emplace_back([&] {
            queue.getDelayedExecutionTime();
            ++answered;
        });
        readers.emplace_back([&] {
            queue.tasksToString();
            ++answered;
        });
        EXPECT_TRUE(eventually([&] { return atLock == 5; }));
        EXPECT_EQ(answered, 0);
        interposed::onLock(nullptr, {});
    }
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(answered, 5);
}

TEST_F(QueueReaders, ReadTheClockWithTheLockHeld)
{
    add("a");
    std::unique_lock<std::mutex> lock(queue.mutex);
    std::atomic<std::uint64_t> reads{0};
    std::atomic<bool> atLock{false};
    interposed::onLock(queue.mutex.native_handle(), [&] {
        reads = interposed::clockReads();
        atLock = true;
    });
    std::uint64_t readsBefore = 0;
    std::thread reader([&] {
        readsBefore = interposed::clockReads();
        queue.getDelayedExecutionTime();
    });
    EXPECT_TRUE(eventually([&] { return atLock.load(); }));
    lock.unlock();
    reader.join();
    EXPECT_EQ(reads, readsBefore);
}

}  // namespace
