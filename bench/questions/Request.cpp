// A typed request, getMinElevation(), from the call until the caller is awake with the answer; the client library
// answers at once. Beside it the bare hand-off, and the same question to a service behind a D-Bus daemon.

#include "kelarc/KelArc.h"
#include "peers/Peer.h"
#include "peers/PrivateBus.h"
#include "questions/Measure.h"
#include "questions/Questions.h"

namespace bench {
namespace {

constexpr int kRequests = 400;

template <typename Ask>
Contender asking(const char* name, Ask ask)
{
    return {name, [ask] {
                Reply reply;
                std::vector<double> durationsNs;
                for (int i = 0; i < kRequests; ++i) {
                    const std::int64_t begin = nowNs();
                    ask(reply);
                    reply.await();
                    durationsNs.push_back(static_cast<double>(nowNs() - begin));
                }
                return percentilesUs(durationsNs);
            }};
}

Contender askingPeer(const char* name, Peer& peer)
{
    return asking(
        name, [&peer](Reply& reply) { peer.post([](void* answer) { static_cast<Reply*>(answer)->give(); }, &reply); });
}

}  // namespace

std::vector<Table> request(const Effort& effort)
{
    const OneProcessor pinned;
    PrivateBus bus;  // first: it starts processes, and there should be no other thread then
    kelarc::KelArc modem([](int, const char*) {});
    Reply opened;
    modem.open([&opened](int) { opened.give(); });
    opened.await();
    const auto conditionVariable = makeConditionVariable();
    const auto asio = makeAsioWithName();

    Rounds rounds(
        {asking(kKelArc,
                [&modem](Reply& reply) { modem.getMinElevation([&reply](int, unsigned char) { reply.give(); }); }),
         askingPeer(kConditionVariable, *conditionVariable), askingPeer(kAsioWithName, *asio),
         asking(
             "D-Bus, asynchronous",
             [&bus](Reply& reply) { bus.ask("Sens/MinElevAngle", [&reply](const std::string&) { reply.give(); }); })},
        effort.seed);
    rounds.run(effort.rounds);
    return {comparison("A typed request, from call to callback",
                       "All threads and processes on one processor; KelArc's includes its result line.",
                       {{"p50 us", 2}, {"p99 us", 2}, {"p99.9 us", 2}}, rounds)};
}

}  // namespace bench
