#pragma once

#include "../thread/Thread.h"
#include "ExecutionReason.h"
#include "PlannedTime.h"
#include "TaskContainer.h"
#include "TaskStore.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace task {

/// A bounded queue of named, optionally delayed tasks, served by one worker thread.
///
/// Guarantees:
/// - Bodies run one at a time on the worker thread, never before their planned time, in the order of planned times.
///   Among equal planned times the task added last runs first.
/// - An accepted task runs at most once. It cannot be taken back; tasks that have not run when the queue is destroyed
///   are destroyed uncalled, front to back.
/// - No lock is held while a body runs: it may add tasks and use every reader. It must not throw (the process would
///   end), stop the queue or destroy it (the worker would wait for itself), or wait for a thread that does: stop()
///   returns when the body has ended.
/// - A task whose body is empty is skipped when its turn comes: it is not called and never counts as running.
/// - A finished body is destroyed on the worker thread when the worker looks for its next task, not at once.
/// Not guaranteed: that a task starts soon after its planned time (the body before it may take long), or that an idle
/// worker wakes up exactly on time when the wall clock is stepped.
///
/// Every operation may be called from any thread, unless it says otherwise. A failure to lock the mutex is thrown as
/// std::system_error.
///
/// N is the number of tasks that may wait; T is the record, in the shape of TaskContainer.
template <std::size_t N, typename T>
class TaskQueue
{
public:
    /// `name` is the base of the worker thread's name. It is not copied and must outlive the queue. No thread yet.
    explicit TaskQueue(const char* name) : queueName(name) {}

    /// Stops, then destroys the waiting tasks uncalled.
    virtual ~TaskQueue() { stop(); }

    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Starts the worker; does nothing when it runs already, or when called from a body. Waits for a stop() that has
    /// begun. A stopped queue goes on with the tasks that still wait. Throws std::system_error when the system gives no
    /// thread, std::bad_alloc when there is no memory; starting can then be tried again.
    void start()
    {
        if (isWorker())
            return;
        const std::lock_guard<std::mutex> lock(startStopMutex);
        if (running)
            return;
        if (worker.joinable())
            wakeAndJoinWorker();
        running = true;
        StoppedUnlessStarted outcome{running, false};
        worker = thread::Thread(queueName, &TaskQueue::run, this);
        outcome.hasStarted = true;
    }

    /// Ends the worker; every call returns when the worker has ended. Does nothing when it does not run. A running body
    /// runs to its end first, however long that takes; no further task is taken. Waiting tasks stay.
    void stop()
    {
        if (isWorker()) {
            if (running.exchange(false))
                worker.join();  // throws: it would wait for itself
            return;
        }
        const std::lock_guard<std::mutex> lock(startStopMutex);
        running = false;
        if (worker.joinable())
            wakeAndJoinWorker();
    }

    /// Queues a task to run `delay` from now: a task with delay 0 goes behind all that are due, a negative delay lies
    /// in the past, and a delay beyond the clock's range is cut to that range.
    /// Returns the task's id, never 0; or 0 when N tasks wait already: then nothing has happened, and name and body are
    /// not moved from.
    std::uint32_t addTask(std::string&& name, std::function<void(ExecutionReason)>&& task,
                          const std::chrono::milliseconds& delay)
    {
        // Read before locking: a task is planned from the moment of the call, however long the lock takes.
        const auto plannedTime = plannedAfter(std::chrono::steady_clock::now(), delay);
        std::uint32_t id = 0;
        bool isNewFront = false;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (tasks.full())
                return 0;
            id = nextId;
            nextId = id + 1 == 0 ? 1 : id + 1;
            const std::size_t position = positionFor(plannedTime);
            tasks.emplace(position, id, std::move(name), std::move(task), plannedTime, delay.count() != 0);
            isNewFront = position == 0;
        }
        // A task behind the front does not change the worker's wake-up time. Notified after the unlock: a worker woken
        // earlier would run into the lock.
        if (isNewFront)
            condition.notify_one();
        return id;
    }

    /// Id of the task whose body runs; 0 when none does.
    std::uint32_t getRunningTaskId() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return runningTaskId.load(std::memory_order_acquire);
    }

    /// Name of the task whose body runs; "No running task" when none runs, which is while the id reads 0.
    std::string getRunningTaskName() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::string(publishedName());
    }

    /// For a body, on the worker thread only, which needs no lock: the task's name as given, ended by a zero. Valid
    /// until the body returns.
    std::string_view ownName() const { return runningTaskName; }

    /// Number of waiting tasks; the running one is not counted.
    std::uint32_t getPendingTasks() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return static_cast<std::uint32_t>(
            std::count_if(tasks.begin(), tasks.end(), [](const T& waiting) { return waiting.id != 0; }));
    }

    /// Whole milliseconds until the first waiting task is due, truncated toward zero, delayed or not; negative when it
    /// is overdue, 0 when none waits.
    std::int64_t getDelayedExecutionTime() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return tasks.empty() ? 0 : millisecondsUntil(tasks.front().plannedTime);
    }

    /// A header line with the number of waiting tasks, then a line for each in the order of execution. The queue is
    /// locked meanwhile: for diagnostics, not for polling.
    std::string tasksToString() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        std::string text = "All tasks (" + std::to_string(tasks.size()) + "):\n";
        for (const T& waiting : tasks) {
            text += "\tTask id: " + std::to_string(waiting.id);
            text += ", name: '" + waiting.name;
            text += "', isDelayed: ";
            text += waiting.isDelayed ? "true" : "false";
            text += ", execution was planned in: " + std::to_string(millisecondsUntil(waiting.plannedTime)) + " ms\n";
        }
        return text;
    }

private:
    static constexpr std::string_view kNoRunningTask = "No running task";

    /// Resets `running` when starting ends with an exception.
    struct StoppedUnlessStarted
    {
        std::atomic<bool>& running;
        bool hasStarted;
        ~StoppedUnlessStarted()
        {
            if (!hasStarted)
                running = false;
        }
    };

    /// With the lock held.
    std::string_view publishedName() const
    {
        return runningTaskId.load(std::memory_order_acquire) == 0 ? kNoRunningTask : runningTaskName;
    }

    bool isWorker() const { return workerId.load(std::memory_order_relaxed) == std::this_thread::get_id(); }

    /// The position behind all waiting tasks that are planned earlier: nearly always the back, which is checked first.
    std::size_t positionFor(std::chrono::steady_clock::time_point planned) const
    {
        std::size_t last = tasks.size();
        if (last == 0 || tasks[last - 1].plannedTime < planned)
            return last;
        std::size_t first = 0;
        while (first < last) {
            const std::size_t middle = (first + last) / 2;
            if (tasks[middle].plannedTime < planned)
                first = middle + 1;
            else
                last = middle;
        }
        return first;
    }

    /// `running` must be false. The notification without the lock wakes a worker that waits already. The one after
    /// taking the lock wakes a worker that was between its check of `running` and its wait: otherwise it would sleep
    /// for hours.
    void wakeAndJoinWorker()
    {
        condition.notify_one();
        {
            const std::lock_guard<std::mutex> lock(mutex);
        }
        condition.notify_one();
        worker.join();
    }

    void run()
    {
        workerId.store(std::this_thread::get_id(), std::memory_order_relaxed);
        runTasks();
        workerId.store({}, std::memory_order_relaxed);  // another thread may get the number
    }

    /// One lock for each task. A reader may still be copying the name when its body ends, so the record of an ended
    /// task stays until the next task's name is set: two records take turns.
    void runTasks()
    {
        std::optional<T> records[2];
        for (std::size_t turn = 0;;) {
            std::unique_lock<std::mutex> lock(mutex);
            waitForDueTask(lock);
            if (!running) {
                runningTaskName = kNoRunningTask;  // the records are destroyed
                return;
            }
            T& current = records[turn].emplace(std::move(tasks.front()));
            tasks.pop_front();
            if (!current.task)
                continue;  // nothing to call, so nothing runs either
            runningTaskName = current.name;
            runningTaskId.store(current.id, std::memory_order_relaxed);
            lock.unlock();

            turn = 1 - turn;
            records[turn].reset();  // no reader can reach the earlier name any more
            current.task(current.isDelayed ? ExecutionReason::DELAYED : ExecutionReason::UNDELAYED);
            // Without the lock. From here on nothing runs; a reader that sees this also sees the body's effects.
            runningTaskId.store(0, std::memory_order_release);
            // The finished body is destroyed here, on the worker thread and without the lock: its captures are the
            // user's.
            current.task = nullptr;
        }
    }

    /// Returns when the front is due or the queue is stopping.
    ///
    /// The worker waits at least once for every task. For a task that is due, the wait has zero length: the lock was
    /// released while the body before ran, and has been taken again. A system wait would cost the timer slack, 75 us a
    /// task. The time to a later task is truncated to milliseconds, so the last millisecond is a row of zero waits.
    /// These are system waits, which the slack makes short naps: spinning would burn the processor.
    void waitForDueTask(std::unique_lock<std::mutex>& lock)
    {
        while (running) {
            std::chrono::milliseconds limit = idleWait;  // of a far task too: it keeps deadlines inside time_t
            if (!tasks.empty()) {
                // Not delayed: planned for the moment when it was added, so the clock need not be read.
                if (!tasks.front().isDelayed)
                    return;
                const auto remaining = timeUntil(tasks.front().plannedTime);
                if (remaining <= remaining.zero())
                    return;
                limit = std::min(limit, std::chrono::duration_cast<std::chrono::milliseconds>(remaining));
            }
            condition.wait_for(lock, limit);
        }
    }

    // Constant after construction.
    std::chrono::hours idleWait{24};  ///< longest single wait of the worker

    std::atomic<bool> running{false};  ///< the worker goes on while true
    const char* queueName;             ///< constant after construction
    std::uint32_t nextId = 1;          ///< guarded by mutex
    std::mutex startStopMutex;         ///< held while starting and stopping, also while mutex is taken
    mutable std::mutex mutex;
    std::condition_variable condition;        ///< the worker waits on it with mutex
    TaskStore<N, T> tasks;                    ///< guarded by mutex; by planned time, the next to run in front
    thread::Thread worker;                    ///< guarded by startStopMutex
    std::atomic<std::thread::id> workerId{};  ///< of the worker while it runs; written by it
    /// Of the task whose body runs, 0 when none does. Written by the worker: under mutex when a body begins, without it
    /// when a body ends.
    std::atomic<std::uint32_t> runningTaskId{0};
    /// Guarded by mutex; holds only while runningTaskId is not 0. Refers to the record that the worker took out, which
    /// stays as it is until another name stands here.
    std::string_view runningTaskName = kNoRunningTask;
};

}  // namespace task
