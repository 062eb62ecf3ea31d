// A task with a delay of 3 ms, repeated: how late it begins, and the processor time of all threads for it.

#include "peers/Peer.h"
#include "questions/Measure.h"
#include "questions/Questions.h"
#include "task/TaskQueue.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <glib.h>
#include <thread>

namespace bench {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kDelay(3);
constexpr int kThings = 40;  // in one visit

/// `start` receives a reply and a place for the time at which the task ran.
template <typename Start>
Contender delaying(const char* name, Start start)
{
    return {name, [start] {
                Reply reply;
                std::int64_t ranAtNs = 0;
                std::vector<double> lateUs;
                const std::int64_t processorBefore = processorNs();
                for (int i = 0; i < kThings; ++i) {
                    const std::int64_t begin = nowNs();
                    start(reply, ranAtNs);
                    reply.await();
                    lateUs.push_back(static_cast<double>(ranAtNs - begin) / 1000 - kDelay.count() * 1000.);
                }
                const double processorUs = static_cast<double>(processorNs() - processorBefore) / 1000 / kThings;
                return std::vector<double>{quantileOf(lateUs, 0.5), quantileOf(lateUs, 0.99), quantileOf(lateUs, 0),
                                           processorUs};
            }};
}

void ran(Reply& reply, std::int64_t& ranAtNs)
{
    ranAtNs = nowNs();
    reply.give();
}

}  // namespace

std::vector<Table> delayed(const Effort& effort)
{
    task::TaskQueue<128, task::TaskContainer> queue("Benchmark");
    queue.start();

    asio::io_context context(1);
    const auto guard = asio::make_work_guard(context);
    asio::steady_timer timer(context);
    std::thread worker([&context] { context.run(); });

    GMainContext* const glib = g_main_context_new();
    GMainLoop* const loop = g_main_loop_new(glib, FALSE);
    std::thread glibWorker([loop] { g_main_loop_run(loop); });
    struct Running
    {
        Reply& reply;
        std::int64_t& ranAtNs;
    };

    Rounds rounds(
        {delaying(kKelArc,
                  [&queue](Reply& reply, std::int64_t& ranAtNs) {
                      queue.addTask(
                          "delayed", [&reply, &ranAtNs](task::ExecutionReason) { ran(reply, ranAtNs); }, kDelay);
                  }),
         delaying("asio's steady_timer",
                  [&timer](Reply& reply, std::int64_t& ranAtNs) {
                      timer.expires_after(kDelay);
                      timer.async_wait([&reply, &ranAtNs](const asio::error_code&) { ran(reply, ranAtNs); });
                  }),
         delaying("GLib's timeout source",
                  [glib](Reply& reply, std::int64_t& ranAtNs) {
                      GSource* const source = g_timeout_source_new(static_cast<guint>(kDelay.count()));
                      g_source_set_callback(
                          source,
                          [](gpointer running) -> gboolean {
                              ran(static_cast<Running*>(running)->reply, static_cast<Running*>(running)->ranAtNs);
                              return G_SOURCE_REMOVE;
                          },
                          new Running{reply, ranAtNs}, [](gpointer running) { delete static_cast<Running*>(running); });
                      g_source_attach(source, glib);
                      g_source_unref(source);
                  })},
        effort.seed);
    rounds.run(effort.rounds);

    g_main_loop_quit(loop);
    glibWorker.join();
    g_main_loop_unref(loop);
    g_main_context_unref(glib);
    context.stop();
    worker.join();
    return {comparison("A task delayed by 3 ms", "Lateness of its beginning; processor time of the whole process.",
                       {{"late p50 us", 0}, {"late p99 us", 0}, {"least us", 0}, {"processor us", 0}}, rounds)};
}

}  // namespace bench
