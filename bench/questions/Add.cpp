// The caller's cost of handing work over while the worker is held in a body:
//   depth 0, 32, 127    one add with that many waiting, the reading of the clock taken off
//   mean of 0 to 127    all adds of an empty queue until it is full, divided by their number
//   middle              a delayed thing between 64 that are due earlier and 64 that are due later, no worker running

#include "peers/Name.h"
#include "peers/Peer.h"
#include "questions/Measure.h"
#include "questions/Questions.h"
#include "task/TaskQueue.h"

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <glib.h>
#include <limits>
#include <string>

namespace bench {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

constexpr int kDepths[] = {0, 32, 127};
constexpr int kFillings = 40;  // in one visit

/// Holds a peer's worker in a body.
class Holding
{
public:
    explicit Holding(Peer& peer)
    {
        peer.post(
            [](void* self) {
                static_cast<Holding*>(self)->m_isHeld.give();
                static_cast<Holding*>(self)->m_mayGo.await();
            },
            this);
        m_isHeld.await();
    }
    void release() { m_mayGo.give(); }

private:
    Reply m_isHeld;
    Reply m_mayGo;
};

void doNothing(void*) {}

void tellDrained(void* reply)
{
    static_cast<Reply*>(reply)->give();
}

/// The time between two consecutive readings of the clock.
double readingNs()
{
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t begin = nowNs();
        least = std::min(least, static_cast<double>(nowNs() - begin));
    }
    return least;
}

std::vector<double> addNs(Peer& peer)
{
    static const double reading = readingNs();
    std::vector<std::vector<double>> atDepth(std::size(kDepths));
    std::vector<double> means;
    for (int filling = 0; filling < kFillings; ++filling) {
        // Clock readings during the filling would distort its mean.
        const bool isForMean = filling % 2 == 0;
        Holding holding(peer);
        Reply drained;
        const std::int64_t beginAll = nowNs();
        std::size_t next = 0;
        for (int depth = 0; depth < 128; ++depth) {
            const Peer::Work work = depth < 127 ? doNothing : tellDrained;
            if (isForMean || depth != kDepths[next]) {
                peer.post(work, &drained);
                continue;
            }
            const std::int64_t begin = nowNs();
            peer.post(work, &drained);
            atDepth[next++].push_back(static_cast<double>(nowNs() - begin) - reading);
            next %= std::size(kDepths);
        }
        if (isForMean)
            means.push_back(static_cast<double>(nowNs() - beginAll) / 128);
        holding.release();
        drained.await();
    }
    std::vector<double> figures{quantileOf(means, 0.5)};
    for (const std::vector<double>& durations : atDepth)
        figures.push_back(quantileOf(durations, 0.5));
    return figures;
}

Table adds(const Effort& effort)
{
    const OneProcessor pinned;
    std::vector<std::unique_ptr<Peer>> peers;
    std::vector<Contender> contenders;
    for (const PeerKind& kind : kPeers)
        if (kind.isQueue) {
            peers.push_back(kind.make());
            contenders.push_back({kind.name, [peer = peers.back().get()] { return addNs(*peer); }});
        }
    Rounds rounds(std::move(contenders), effort.seed);
    rounds.run(effort.rounds);
    return comparison("Adding while the worker is busy", "The caller's cost; all threads on one processor.",
                      {{"mean of 0-127 ns", 0}, {"depth 0 ns", 0}, {"depth 32 ns", 0}, {"depth 127 ns", 0}}, rounds);
}

// 32 early, 32 late, then 64 that go between them: 64 wait in the middle of it.
constexpr int kSide = 32;
constexpr int kMiddle = 64;

template <typename AddOne>
double middleNs(AddOne addOne)
{
    for (int i = 0; i < kSide; ++i)
        addOne(hours(1));
    for (int i = 0; i < kSide; ++i)
        addOne(hours(3));
    const std::int64_t begin = nowNs();
    for (int i = 0; i < kMiddle; ++i)
        addOne(hours(2));
    return static_cast<double>(nowNs() - begin) / kMiddle;
}

double queueMiddleNs()
{
    task::TaskQueue<128, task::TaskContainer> queue("Benchmark");
    return middleNs([&queue](hours delay) {
        queue.addTask(
            kTaskName, [](task::ExecutionReason) {}, delay);
    });
}

double asioMiddleNs()
{
    asio::io_context context(1);
    return middleNs([&](hours delay) {
        const auto timer = std::make_shared<asio::steady_timer>(context, delay);
        timer->async_wait([timer, name = std::string(kTaskName)](const asio::error_code&) {});
    });
}

double glibMiddleNs()
{
    GMainContext* const context = g_main_context_new();
    const double ns = middleNs([context](hours delay) {
        GSource* const source = g_timeout_source_new_seconds(static_cast<guint>(delay.count()) * 3600);
        g_source_set_callback(
            source, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, new std::string(kTaskName),
            [](gpointer name) { delete static_cast<std::string*>(name); });
        g_source_attach(source, context);
        g_source_unref(source);
    });
    g_main_context_unref(context);
    return ns;
}

Contender repeated(const char* name, double (*measure)())
{
    return {name, [measure] {
                std::vector<double> values;
                for (int i = 0; i < kFillings; ++i)
                    values.push_back(measure());
                return std::vector<double>{quantileOf(values, 0.5)};
            }};
}

Table middle(const Effort& effort)
{
    const OneProcessor pinned;
    Rounds rounds({repeated(kKelArc, queueMiddleNs), repeated("asio's steady_timer, name", asioMiddleNs),
                   repeated("GLib's timeout source, name", glibMiddleNs)},
                  effort.seed);
    rounds.run(effort.rounds);
    return comparison("A delayed add into the middle",
                      "Between 32 that are due earlier and 32 that are due later, mean of 64.", {{"ns", 0}}, rounds);
}

}  // namespace

std::vector<Table> add(const Effort& effort)
{
    return {adds(effort), middle(effort)};
}

}  // namespace bench
