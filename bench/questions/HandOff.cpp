// The time from handing one task to the worker until the caller is awake again with the answer:
//   idle worker     with 150 us of sleep before, so that the worker sleeps
//   back to back    the next one right after the answer

#include "peers/Peer.h"
#include "questions/Measure.h"
#include "questions/Questions.h"

#include <ctime>

namespace bench {
namespace {

constexpr timespec kPause{0, 150'000};

std::vector<double> roundTrips(Peer& peer, int count, bool isWorkerIdle)
{
    Reply reply;
    std::vector<double> durationsNs;
    for (int i = 0; i < count; ++i) {
        if (isWorkerIdle)
            clock_nanosleep(CLOCK_MONOTONIC, 0, &kPause, nullptr);
        const std::int64_t begin = nowNs();
        peer.post([](void* answer) { static_cast<Reply*>(answer)->give(); }, &reply);
        reply.await();
        durationsNs.push_back(static_cast<double>(nowNs() - begin));
    }
    return percentilesUs(durationsNs);
}

Table measured(const Effort& effort, const char* question, int count, bool isWorkerIdle)
{
    const OneProcessor pinned;
    std::vector<std::unique_ptr<Peer>> peers;
    std::vector<Contender> contenders;
    for (const PeerKind& kind : kPeers) {
        peers.push_back(kind.make());
        contenders.push_back({kind.name, [peer = peers.back().get(), count, isWorkerIdle] {
                                  return roundTrips(*peer, count, isWorkerIdle);
                              }});
    }
    Rounds rounds(std::move(contenders), effort.seed);
    rounds.run(effort.rounds);
    return comparison(question, "All threads on one processor; to the worker and back.",
                      {{"p50 us", 2}, {"p99 us", 2}, {"p99.9 us", 2}}, rounds);
}

}  // namespace

std::vector<Table> handOff(const Effort& effort)
{
    return {measured(effort, "Round trip to an idle worker", 200, true),
            measured(effort, "Round trips back to back", 2000, false)};
}

}  // namespace bench
