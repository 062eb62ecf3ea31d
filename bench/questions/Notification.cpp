// One LSTA notification, from the entry point that the client library calls to the application's callback, all on the
// caller's thread. For comparison, the simplest way to make a callback replaceable: a mutex and a copy of a shared
// pointer.

#include "arc/ArcRilD.h"
#include "client/InstantArc.h"
#include "kelarc/KelArc.h"
#include "questions/Measure.h"
#include "questions/Questions.h"

#include <memory>

namespace bench {
namespace {

constexpr int kNotifications = 20'000;

template <typename Notify>
Contender notifying(const char* name, Notify notify)
{
    return {name, [notify] {
                const std::int64_t begin = nowNs();
                for (int i = 0; i < kNotifications; ++i)
                    notify();
                return std::vector<double>{static_cast<double>(nowNs() - begin) / kNotifications};
            }};
}

}  // namespace

std::vector<Table> notification(const Effort& effort)
{
    kelarc::KelArc modem([](int, const char*) {});
    Reply ready;
    unsigned told = 0;
    modem.setNotificationCB([](kelarc::NOTIFY_ID, void*, int) {});
    modem.setLstaGnssStatus(
        kelarc::lsta::TECH::GPS, true, 0, [&told](kelarc::lsta::TYPE, int, double) { ++told; }, [](int) {});
    modem.resetAGNSS([&ready](int) { ready.give(); });
    ready.await();

    LstaInfo info{1000, 0, 1, 0, 2.5, {}};
    std::mutex mutex;
    const auto shared = std::make_shared<std::function<void(int, int, double)>>([&told](int, int, double) { ++told; });

    Rounds rounds({notifying("KelArc", [&info] { notify(34, &info, sizeof info); }),
                   notifying("mutex and a shared callback",
                             [&] {
                                 std::shared_ptr<std::function<void(int, int, double)>> now;
                                 {
                                     const std::lock_guard<std::mutex> lock(mutex);
                                     now = shared;
                                 }
                                 (*now)(7, info.status, info.value);
                             })},
                  effort.seed);
    rounds.run(effort.rounds);
    return {comparison("An LSTA notification, from entry point to callback", "", {{"ns", 0}}, rounds)};
}

}  // namespace bench
