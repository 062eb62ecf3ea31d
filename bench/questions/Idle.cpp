// The cost of idle workers in 10 s: how often they were switched to, and how long they ran.

#include "peers/Peer.h"
#include "questions/Measure.h"
#include "questions/Questions.h"
#include "task/TaskQueue.h"

#include <fstream>
#include <thread>
#include <unistd.h>

namespace bench {
namespace {

using Queue = task::TaskQueue<128, task::TaskContainer>;

struct Usage
{
    std::int64_t ranNs;
    std::int64_t switches;
};

pid_t workerOf(Queue& queue)
{
    pid_t worker = 0;
    Reply reply;
    queue.addTask(
        "who", [&](task::ExecutionReason) { worker = gettid(), reply.give(); }, std::chrono::milliseconds(0));
    reply.await();
    return worker;
}

/// The system's account: nanoseconds on a processor, nanoseconds waiting for one, times switched to.
Usage usageOf(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/schedstat");
    Usage usage{};
    std::int64_t waitedNs = 0;
    file >> usage.ranNs >> waitedNs >> usage.switches;
    return usage;
}

}  // namespace

std::vector<Table> idle(const Effort&)
{
    Queue nothing("Nothing");
    Queue hour("Hour");
    struct Watched
    {
        const char* name;
        Queue& queue;
        pid_t worker;
        Usage before;
    } watched[] = {{"nothing waits", nothing, 0, {}}, {"a task is due in an hour", hour, 0, {}}};

    for (Watched& each : watched) {
        each.queue.start();
        each.worker = workerOf(each.queue);
    }
    hour.addTask(
        "later", [](task::ExecutionReason) {}, std::chrono::hours(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // until all workers are idle
    for (Watched& each : watched)
        each.before = usageOf(each.worker);
    std::this_thread::sleep_for(std::chrono::seconds(10));

    Table table{"Ten seconds without work", "", {"wake-ups", "processor us"}, {}};
    for (const Watched& each : watched) {
        const Usage after = usageOf(each.worker);
        const std::int64_t switches = after.switches - each.before.switches;
        const double ranUs = static_cast<double>(after.ranNs - each.before.ranNs) / 1000;
        table.rows.push_back({each.name,
                              {std::to_string(switches), shown(ranUs, 0)},
                              {{"wake-ups", switches}, {"processor us", ranUs}}});
    }
    return {table};
}

}  // namespace bench
