// The course of virtual time: what moves it, and in which order things happen in it.

#include "sim/host_support.h"

#include <gtest/gtest.h>

namespace {

using namespace host_test;

TEST(VirtualTime, StandsUntilTheFirstCall)
{
    VirtualHost host(R"("events":[{"atMs":0,"id":1}])");
    EXPECT_EQ(host.now(), milliseconds(0));
    EXPECT_EQ(host.nextLook(), std::nullopt);
    EXPECT_FALSE(host.wantsLook());
    EXPECT_TRUE(host.takeEvents().empty());
    Client client(host, {"", 1, true, true, 0, 0});
    host.begin(client.id(), Function::Open);
    EXPECT_TRUE(host.wantsLook());
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1}));
}

TEST(VirtualTime, BeginsWhenItIsAdvanced)
{
    VirtualHost host;
    host.advanceTo(milliseconds(0));
    EXPECT_TRUE(host.wantsLook());
    host.advanceTo(milliseconds(70));
    host.advanceTo(milliseconds(69));
    EXPECT_EQ(host.now(), milliseconds(70)) << "never back";
}

TEST(VirtualTime, IsTheSumOfAllLatencies)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","times":99,"latencyMs":300},
                                  {"function":"ARC_GetRilVersion","times":99,"latencyMs":17},
                                  {"function":"ARC_Close","times":99,"latencyMs":86400000}])",
                     true);
    Client client(host);
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(host.now(), milliseconds(300));
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(host.now(), milliseconds(334));
    EXPECT_EQ(client.close(), 0);
    EXPECT_EQ(host.now(), milliseconds(86400334));
}

TEST(VirtualTime, PassesOnceForCallsAtTheSameTime)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","times":1,"latencyMs":300},
                                  {"function":"ARC_Close","times":1,"latencyMs":100}])");
    const Client client(host);
    const auto longer = host.begin(client.id(), Function::Open);
    const auto shorter = host.begin(client.id(), Function::Close);
    EXPECT_EQ(host.finish(client.id(), {Function::Open, {}}, longer).code, 0);
    EXPECT_EQ(host.now(), milliseconds(300));
    EXPECT_EQ(host.finish(client.id(), {Function::Close, {}}, shorter).code, 0);
    EXPECT_EQ(host.now(), milliseconds(300));
}

TEST(VirtualTime, GoesThroughAllThatIsPlannedInOrder)
{
    VirtualHost host(R"("firstFix":{"coldMs":0},"events":[{"atMs":2100,"id":1},{"atMs":2300,"id":2}],
        "lsta":[{"atMs":2200,"system":"gps","status":5,"value":1},{"atMs":2400,"system":"gps","status":6}])");
    Client client(host);
    client.open();
    client.enableLsta(10);
    host.advanceTo(milliseconds(2000));
    host.takeEvents();
    host.injectEvents({{milliseconds(100), 11, {}}, {milliseconds(250), 12, {}}, {milliseconds(400), 13, {}}});
    host.advanceTo(milliseconds(2500));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1, 11, 34, 12, 2, 34, 13}))
        << "of one moment: the scenario's, LSTA, injected ones";
}

TEST(VirtualTime, LetsEventsOfACallsLatencyComeBeforeItsAnswer)
{
    VirtualHost host(R"("events":[{"atMs":99,"id":1},{"atMs":100,"id":2},{"atMs":101,"id":3}],
                        "faults":[{"function":"ARC_GetRilVersion","times":1,"latencyMs":100}])");
    Client client(host);
    client.open();
    client.ask();
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{1, 2}));
}

TEST(VirtualTime, MakesEveryEpochWithWhatHoldsThen)
{
    VirtualHost host(R"("firstFix":{"coldMs":0})");
    Client client(host);
    client.open();
    client.start();
    host.advanceTo(milliseconds(4000));
    EXPECT_EQ(host.output().feed().counters().unheard, 5U) << "one at the start, too";
    client.write("Nmea/FreqMs", "\"100\"");
    host.advanceTo(milliseconds(5000));
    EXPECT_EQ(host.output().feed().counters().unheard, 15U);
    client.stop();
    host.advanceTo(milliseconds(9000));
    EXPECT_EQ(host.output().feed().counters().unheard, 15U);
}

TEST(VirtualTime, ReportsLstaEverySecondThatPasses)
{
    VirtualHost host(R"("firstFix":{"coldMs":0})");
    Client client(host);
    client.open();
    client.start();
    client.enableLsta(10, 1);
    host.advanceTo(milliseconds(10999));
    EXPECT_EQ(host.takeEvents().size(), 10U);
    host.advanceTo(milliseconds(11000));
    EXPECT_EQ(host.takeEvents().size(), 1U);
}

}  // namespace
