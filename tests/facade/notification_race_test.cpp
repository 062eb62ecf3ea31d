#include "support/KelArcTest.h"

#include <atomic>

namespace {

using kelarc::NOTIFY_ID;
using kelarc::lsta::TECH;
using kelarc::lsta::TYPE;
using support::Function;
using support::lstaInfo;
using ::testing::ElementsAre;

class NotificationRace : public support::KelArcTest
{
protected:
    static void deliver(int id)
    {
        LstaInfo info = lstaInfo(1000, 1, 1);
        ASSERT_TRUE(arcsim::deliverEvent(id, &info, sizeof info));
    }
};

/// A callback whose state must be alive whenever it is called.
struct Live
{
    std::shared_ptr<std::atomic<int>> calls = std::make_shared<std::atomic<int>>(0);
    std::vector<int> payload = std::vector<int>(64, 1);

    template <typename... Values>
    void operator()(Values...) const
    {
        for (const int value : payload)
            *calls += value;
    }
};

TEST_F(NotificationRace, AUserCallbackMayReplaceItself)
{
    const auto witness = std::make_shared<int>(5);
    int seenAfterReplacement = 0;
    kelarc().setNotificationCB([&, witness](NOTIFY_ID, void*, int) {
        kelarc().setNotificationCB(event("second"));
        seenAfterReplacement = *witness;  // what is being called stays alive to its end
    });
    settle();
    deliver(22);
    EXPECT_EQ(seenAfterReplacement, 5);
    EXPECT_EQ(witness.use_count(), 1) << "the replaced callback was not destroyed";
    deliver(22);
    EXPECT_THAT(events(), ElementsAre("second(1, data, 64)"));
    settle();
}

TEST_F(NotificationRace, AUserCallbackMayRemoveItself)
{
    kelarc().setNotificationCB([this](NOTIFY_ID, void*, int) {
        kelarc().setNotificationCB(nullptr);
        journal.add(support::Kind::event, "removed");
    });
    settle();
    deliver(22);
    deliver(22);
    EXPECT_THAT(events(), ElementsAre("removed"));
    settle();
}

TEST_F(NotificationRace, AnLstaCallbackMayReplaceItself)
{
    open();
    kelarc().setNotificationCB([](NOTIFY_ID, void*, int) {});
    const auto witness = std::make_shared<int>(5);
    int seenAfterReplacement = 0;
    kelarc().setLstaGnssStatus(
        TECH{1}, true, 0,
        [&, witness](TYPE, int, double) {
            kelarc().setLstaGnssStatus(TECH{1}, true, 0, event("second"), [](int) {});
            seenAfterReplacement = *witness;
        },
        [](int) {});
    settle();
    deliver(34);
    EXPECT_EQ(seenAfterReplacement, 5);
    EXPECT_EQ(witness.use_count(), 1);
    deliver(34);
    EXPECT_THAT(events(), ElementsAre("second(7, 1, 1.000000)"));
    settle();
}

TEST_F(NotificationRace, TheEndOfARawStartMayReplaceTheCallback)
{
    const auto witness = std::make_shared<int>(5);
    int seenAfterReplacement = 0;
    kelarc().setNotificationCB([&, witness](NOTIFY_ID, void*, int) {
        kelarc().setNotificationCB(event("second"));
        seenAfterReplacement = *witness;
    });
    kelarc().startRawGNSS(answer());
    kelarc().startRawGNSS(answer());
    settle();
    EXPECT_EQ(seenAfterReplacement, 5);
    EXPECT_THAT(events(), ElementsAre("second(7, null, 0)"));
}

TEST_F(NotificationRace, CallbacksMayBeReplacedWhileEventsArrive)
{
    open();
    const Live total;
    kelarc().setNotificationCB(total);
    kelarc().setLstaGnssStatus(TECH{1}, true, 0, total, [](int) {});
    settle();
    std::atomic<bool> enough{false};
    std::thread replacing([&] {
        while (!enough) {
            Live user = total;
            user.payload.assign(64, 1);
            kelarc().setNotificationCB(user);
            Live lsta = total;
            lsta.payload.assign(64, 1);
            kelarc().setLstaGnssStatus(TECH{1}, true, 0, lsta, [](int) {});
        }
    });
    for (int i = 0; i < 300; ++i) {
        deliver(22);
        deliver(34);
    }
    enough = true;
    replacing.join();
    settle();
    EXPECT_EQ(*total.calls, 2 * 300 * 64);
}

TEST_F(NotificationRace, EventsAndTheEndOfARawStartMayMeetInTheCallback)
{
    open();
    script(Function::StartGNSSraw, {0});
    std::atomic<int> fromEvents{0};
    std::atomic<int> fromWorker{0};
    kelarc().setNotificationCB(
        [&](NOTIFY_ID id, void*, int) { ++(static_cast<int>(id) == 7 ? fromWorker : fromEvents); });
    settle();
    for (int i = 0; i < 100; ++i) {
        kelarc().startRawGNSS([](int, std::string&&) {});
        deliver(73);
    }
    settle();
    EXPECT_EQ(fromEvents, 100);
    EXPECT_EQ(fromWorker, 100);
}

TEST_F(NotificationRace, OperationsMayBeRequestedFromSeveralThreads)
{
    open();
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([this] {
            for (int i = 0; i < 20; ++i) {
                kelarc().getSbasStatus(answer());
                kelarc().setMinElevation(4, answer("refused"));
                kelarc().tasksToString();
                kelarc().getRunningTaskName();
                kelarc().isOpen();
            }
        });
    for (std::thread& caller : callers)
        caller.join();
    settle();
    EXPECT_EQ(answers().size(), 160U);
}

}  // namespace
