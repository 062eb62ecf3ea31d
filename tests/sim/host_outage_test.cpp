// The modem while its RIL daemon is dead.

#include "sim/host_support.h"

#include <gtest/gtest.h>

namespace {

using namespace host_test;

constexpr const char* kPlanned = R"("outages":[{"atMs":100,"forMs":200},{"atMs":1000,"forMs":1}])";

TEST(HostOutage, HoldsFromItsBeginToBeforeItsEnd)
{
    VirtualHost host(kPlanned);
    Client client(host);
    const std::pair<int, bool> expected[] = {{0, false},   {99, false},  {100, true},  {101, true},   {299, true},
                                             {300, false}, {999, false}, {1000, true}, {1001, false}, {5000, false}};
    for (const auto& [time, outage] : expected) {
        host.advanceTo(milliseconds(time));
        EXPECT_EQ(host.isOutage(), outage) << time;
        EXPECT_EQ(client.open(), outage ? 31 : 0) << time;
    }
    EXPECT_EQ(host.callCounts()[requestOf(Function::Open)].failed, 4U);
}

TEST(HostOutage, DoesNotBeginBeforeTheScenarioDoes)
{
    VirtualHost host(R"("outages":[{"atMs":0,"forMs":100}])");
    EXPECT_FALSE(host.isOutage());
    Client client(host);
    EXPECT_EQ(client.open(), 31);
    EXPECT_TRUE(host.isOutage());
}

TEST(HostOutage, AnswersAtOnceAndBeforeEveryFault)
{
    VirtualHost host(R"("outages":[{"atMs":0,"forMs":100}],
                        "faults":[{"function":"ARC_Open","fromMs":0,"code":32,"latencyMs":5000}])",
                     true);
    Client client(host);
    EXPECT_EQ(client.open(), 31);
    EXPECT_EQ(client.ask(), 31);
    EXPECT_EQ(host.now(), milliseconds(0));
    host.advanceTo(milliseconds(100));
    EXPECT_EQ(client.open(), 32);
    EXPECT_EQ(host.now(), milliseconds(5100));
}

TEST(HostOutage, AnswersCallsThatHaveBegunBefore)
{
    VirtualHost host(R"("outages":[{"atMs":100,"forMs":200}],
                        "faults":[{"function":"ARC_Open","times":2,"latencyMs":150}])");
    Client client(host);
    EXPECT_EQ(client.open(), 31) << "its answer would have come in the outage";
    EXPECT_EQ(host.now(), milliseconds(150));
    EXPECT_FALSE(client.session().isOpen);
    EXPECT_EQ(client.session().waiting, 0U);
}

TEST(HostOutage, LeavesCallsAloneThatEndAfterIt)
{
    VirtualHost host(R"("outages":[{"atMs":100,"forMs":200}],
                        "faults":[{"function":"ARC_Open","times":1,"latencyMs":300}])");
    Client client(host);
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(host.now(), milliseconds(300));
}

TEST(HostOutage, LosesEvents)
{
    VirtualHost host(R"("outages":[{"atMs":100,"forMs":200}],
                        "events":[{"atMs":99,"id":1},{"atMs":100,"id":2},{"atMs":299,"id":3},{"atMs":300,"id":4}])");
    Client client(host);
    client.open();
    host.injectEvents({{milliseconds(50), 11, {}}, {milliseconds(200), 12, {}}, {milliseconds(301), 13, {}}});
    host.advanceTo(milliseconds(99));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{11, 1}));
    host.advanceTo(milliseconds(400));
    EXPECT_EQ(idsOf(host.takeEvents()), (std::vector<int>{4, 13}));
}

TEST(HostOutage, LosesEventsThatNobodyHasTakenBefore)
{
    VirtualHost host(R"("outages":[{"atMs":100,"forMs":200}],"events":[{"atMs":99,"id":1}])");
    Client client(host);
    client.open();
    host.advanceTo(milliseconds(300));
    EXPECT_TRUE(host.takeEvents().empty());
}

TEST(HostOutage, IsNoneOfTheModemsBusiness)
{
    VirtualHost host(R"("outages":[{"atMs":100,"forMs":2000}],"firstFix":{"coldMs":0})");
    Client client(host);
    client.open();
    client.write("Power/Cpu", "\"max\"");
    client.start();
    host.advanceTo(milliseconds(100));
    const auto before = host.output().feed().counters().unheard;
    EXPECT_EQ(client.stop(), 31);
    EXPECT_EQ(client.close(), 31);
    host.advanceTo(milliseconds(2000));
    EXPECT_EQ(host.output().feed().counters().unheard, before + 2) << "an epoch a second";
    EXPECT_EQ(host.engine(), EngineState::running);
    host.advanceTo(milliseconds(2100));
    EXPECT_EQ(client.read("Power/Cpu").text, "\"max\"");
}

TEST(HostOutage, CanBeginNow)
{
    VirtualHost host;
    Client client(host);
    client.open();
    host.advanceTo(milliseconds(50));
    EXPECT_FALSE(host.isOutage());
    host.injectOutage(milliseconds(100));
    EXPECT_TRUE(host.isOutage());
    EXPECT_EQ(client.ask(), 31);
    host.advanceTo(milliseconds(149));
    EXPECT_TRUE(host.isOutage());
    host.advanceTo(milliseconds(150));
    EXPECT_FALSE(host.isOutage());
    EXPECT_EQ(client.ask(), 0);
}

TEST(HostOutage, ThatBeginsNowIsTheFirstThingToHappen)
{
    VirtualHost host;
    host.injectOutage(milliseconds(100));
    EXPECT_TRUE(host.isOutage()) << "scenario time begins with it";
    host.injectOutage(milliseconds(10));
    host.advanceTo(milliseconds(10));
    EXPECT_FALSE(host.isOutage()) << "the last one counts";
}

TEST(HostOutage, OfNoTimeIsNone)
{
    VirtualHost host;
    host.injectOutage(milliseconds(0));
    EXPECT_FALSE(host.isOutage());
}

}  // namespace
