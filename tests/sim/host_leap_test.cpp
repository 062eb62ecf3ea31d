// How virtual time goes on while nobody calls.

#include "sim/held_clock.h"
#include "sim/host_support.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace host_test;
using Real = ModemHost::Real;

/// With an event planned for much later.
class LeapingTime : public testing::Test
{
protected:
    LeapingTime() { EXPECT_EQ(client.open(), 0); }

    /// As one does who serves the modem, until something has come.
    std::vector<int> nextEvents()
    {
        const auto end = Real::now() + std::chrono::seconds(30);
        while (Real::now() < end) {
            const auto look = host.nextLook();
            const std::vector<int> ids = idsOf(host.takeEvents());
            if (!ids.empty() || !look)
                return ids;
            std::this_thread::sleep_until(*look);
        }
        return {};
    }

    VirtualHost host{R"("events":[{"atMs":10000,"id":1},{"atMs":20000,"id":2}],
                        "faults":[{"function":"ARC_ResetAGNSS","fromMs":30000,"untilMs":40000,"code":5}])"};
    Client client{host};
};

TEST_F(LeapingTime, LeapsToOneThingAfterTheOther)
{
    EXPECT_EQ(nextEvents(), (std::vector<int>{1}));
    EXPECT_EQ(host.now(), milliseconds(10000));
    EXPECT_EQ(nextEvents(), (std::vector<int>{2}));
    EXPECT_EQ(host.now(), milliseconds(20000));
    EXPECT_TRUE(nextEvents().empty());
    EXPECT_EQ(host.now(), milliseconds(40000)) << "where faults begin and end, too, and nowhere else";
    EXPECT_EQ(host.nextLook(), std::nullopt);
}

TEST_F(LeapingTime, DoesNotLeapOverEventsThatAreNotTaken)
{
    HeldClock clock;
    host.advanceTo(milliseconds(10000));
    clock.pass(std::chrono::seconds(1));  // quiet enough for a leap
    EXPECT_EQ(host.nextLook(), Real::now()) << "at once";
    EXPECT_EQ(host.now(), milliseconds(10000));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1}));
}

TEST_F(LeapingTime, IsQuietForAMomentAfterALeap)
{
    HeldClock clock;
    clock.pass(std::chrono::seconds(1));
    host.nextLook();
    ASSERT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1}));
    const auto leapt = Real::now();
    EXPECT_EQ(host.nextLook(), leapt + milliseconds(5)) << "a call that the event causes comes first";
    clock.goTo(leapt + milliseconds(5) - Real::duration(1));
    host.nextLook();
    EXPECT_EQ(host.now(), milliseconds(10000));
    clock.goTo(leapt + milliseconds(5));
    host.nextLook();
    EXPECT_EQ(host.now(), milliseconds(20000));
}

TEST_F(LeapingTime, LooksForAReaderWhileTheEngineIsOn)
{
    client.start();
    const auto before = Real::now();
    const auto look = host.nextLook();
    const auto after = Real::now();
    ASSERT_TRUE(look);
    EXPECT_GE(*look, before);
    EXPECT_LE(*look, after + milliseconds(5));
    EXPECT_EQ(nextEvents(), (std::vector<int>{1})) << "nobody listens, so epochs keep nothing waiting";
    EXPECT_GE(host.output().feed().counters().unheard, 10U);
}

TEST(VirtualLeap, GoesToWhereTheEngineIsRunning)
{
    VirtualHost starting(R"("engineStartMs":700)", true);
    Client other(starting);
    other.open();
    other.start();
    ASSERT_EQ(starting.engine(), EngineState::starting);
    const milliseconds begun = starting.now();
    const auto end = Real::now() + std::chrono::seconds(30);
    while (starting.engine() == EngineState::starting && Real::now() < end)
        if (const auto look = starting.nextLook())
            std::this_thread::sleep_until(*look);
    EXPECT_EQ(starting.engine(), EngineState::running);
    EXPECT_EQ(starting.now(), begun + milliseconds(700));
}

TEST_F(LeapingTime, GoesAsFastAsAReaderReadsAndNoFaster)
{
    client.start();
    const int reader =
        open(client.call(Function::StartGNSSraw, {Argument::pointer(true), Argument::of(255)}).text->c_str(),
             O_RDONLY | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    const auto lookUntil = [&](const auto& done) {
        const auto end = Real::now() + std::chrono::seconds(30);
        while (!done() && Real::now() < end)
            if (const auto look = host.nextLook())
                std::this_thread::sleep_until(*look);
        EXPECT_TRUE(done());
    };
    const auto hasBytes = [&] {
        pollfd state{reader, POLLIN, 0};
        return poll(&state, 1, 0) == 1 && (state.revents & POLLIN) != 0;
    };
    const auto end = Real::now() + std::chrono::seconds(60);
    for (int epoch = 1; epoch <= 5; ++epoch) {
        lookUntil(hasBytes);
        const milliseconds time = host.now();
        for (int i = 0; i < 20; ++i) {
            host.nextLook();
            EXPECT_EQ(host.now(), time) << "an epoch is there to be read";
        }
        while (host.now() == time && Real::now() < end) {
            char buffer[4096];
            while (read(reader, buffer, sizeof buffer) > 0) {
            }
            host.nextLook();
        }
        EXPECT_EQ(host.now(), time + milliseconds(1000));
    }
    close(reader);
}

/// Calls ARC_Open once and expects that time stands for so long afterwards, and then no longer.
void expectQuiet(const std::string& faults, int code, milliseconds quiet)
{
    HeldClock clock;
    VirtualHost host(R"("events":[{"atMs":10000,"id":1}],"faults":)" + faults);
    Client client(host);
    EXPECT_EQ(client.open(), code);
    const auto end = Real::now() + quiet;
    EXPECT_EQ(host.nextLook(), end);
    clock.goTo(end - Real::duration(1));
    EXPECT_EQ(host.nextLook(), end);
    EXPECT_EQ(host.now(), milliseconds(0));
    clock.goTo(end);
    host.nextLook();
    EXPECT_EQ(host.now(), milliseconds(10000));
}

TEST(VirtualQuiet, LastsATenthOfASecondAfterAnAnswer)
{
    expectQuiet("[]", 0, milliseconds(100));
}

TEST(VirtualQuiet, LastsLongerAfterAFailure)
{
    expectQuiet(R"([{"function":"ARC_Open","call":1,"code":15}])", 15, milliseconds(400));
}

constexpr const char* kFirstFails = R"("faults":[{"function":"ARC_Open","call":1,"code":15}])";

TEST(VirtualPause, OfTwoHundredMillisecondsAfterAFailureCounts250)
{
    HeldClock clock;
    VirtualHost host(kFirstFails);
    Client client(host);
    EXPECT_EQ(client.open(), 15);
    clock.pass(milliseconds(200));
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(host.now(), milliseconds(250));
    clock.pass(milliseconds(200));
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(host.now(), milliseconds(250)) << "after a success nobody repeats";
}

TEST(VirtualPause, ThatIsShorterCountsNothing)
{
    HeldClock clock;
    VirtualHost host(kFirstFails);
    Client client(host);
    EXPECT_EQ(client.open(), 15);
    clock.pass(milliseconds(200) - Real::duration(1));
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(host.now(), milliseconds(0));
}

TEST(VirtualPause, IsNoneOfRealTimes)
{
    ModemHost host(arcsim::parseScenario("test.json", std::string(R"({"latencies":false,)") + kFirstFails + "}"),
                   ScenarioClock::Mode::real);
    Client client(host);
    const auto before = Real::now();
    EXPECT_EQ(client.open(), 15);
    std::this_thread::sleep_until(Real::now() + milliseconds(200));
    EXPECT_EQ(client.open(), 0);
    EXPECT_LE(host.now(), Real::now() - before);
}

}  // namespace
