#include "modem/Modem.h"
#include "modem/Requests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using arcsim::modem::Fault;
using arcsim::modem::FaultPlan;
using arcsim::modem::findRequest;
using arcsim::modem::LstaSystem;
using arcsim::modem::Modem;
using arcsim::modem::realisticLatency;
using arcsim::modem::Reception;
using arcsim::modem::Scenario;
using std::chrono::milliseconds;

Scenario with(Fault fault)
{
    Scenario scenario;
    fault.code = 9;
    scenario.faults = {fault};
    return scenario;
}

bool hits(const Scenario& scenario, std::size_t request, unsigned number, int ms = 0)
{
    FaultPlan plan(1, scenario.faults);
    return plan.take(request, number, milliseconds(ms)).code == 9;
}

TEST(Fault, HitsTheCallsItCounts)
{
    Fault fault;
    fault.request = 3;
    fault.firstCall = 2;
    fault.callCount = 2;
    const Scenario scenario = with(fault);
    EXPECT_FALSE(hits(scenario, 3, 1));
    EXPECT_TRUE(hits(scenario, 3, 2));
    EXPECT_TRUE(hits(scenario, 3, 3));
    EXPECT_FALSE(hits(scenario, 3, 4));
    EXPECT_FALSE(hits(scenario, 4, 2)) << "another request";
}

TEST(Fault, HitsAllCallsFromItsBeginTimeUntilBeforeItsEndTime)
{
    Fault fault;
    fault.from = milliseconds(1000);
    fault.until = milliseconds(2000);
    const Scenario scenario = with(fault);
    EXPECT_FALSE(hits(scenario, 0, 1, 999));
    EXPECT_TRUE(hits(scenario, 0, 1, 1000));
    EXPECT_TRUE(hits(scenario, 0, 7, 1999));
    EXPECT_FALSE(hits(scenario, 0, 1, 2000));
}

TEST(Fault, HitsOnlyWhenCountAndTimeBothApply)
{
    Fault fault;
    fault.firstCall = 1;
    fault.from = milliseconds(1000);
    const Scenario scenario = with(fault);
    EXPECT_FALSE(hits(scenario, 0, 1, 999));
    EXPECT_TRUE(hits(scenario, 0, 1, 1000));
    EXPECT_FALSE(hits(scenario, 0, 2, 1000));
}

TEST(Fault, ListedFirstGoesFirst)
{
    Fault first;
    first.firstCall = 1;
    first.code = 2;
    Fault second = first;
    second.code = 3;
    Scenario scenario;
    scenario.faults = {first, second};
    EXPECT_EQ(FaultPlan(1, scenario.faults).take(0, 1, milliseconds(0)).code, 2);
}

TEST(Request, IsFoundByItsNameInTheOrderOfTheClientLibrary)
{
    EXPECT_EQ(findRequest("ARC_SetNotificationMethod"), 0U);
    EXPECT_EQ(findRequest("ARC_Open"), 1U);
    EXPECT_EQ(findRequest("ARC_CheckModuleSetting"), 8U);
    EXPECT_EQ(findRequest("ARC_EnableLSTA"), 14U);
    EXPECT_EQ(findRequest("ARC_Reboot"), std::nullopt);
}

std::vector<milliseconds> hundredLatencies(std::uint64_t seed, const char* name)
{
    std::vector<milliseconds> latencies;
    for (unsigned number = 1; number <= 100; ++number)
        latencies.push_back(realisticLatency(seed, *findRequest(name), number));
    return latencies;
}

TEST(RealisticLatency, RepeatsForTheSameSeedAndDiffersForAnother)
{
    EXPECT_EQ(hundredLatencies(1, "ARC_CheckModuleSetting"), hundredLatencies(1, "ARC_CheckModuleSetting"));
    EXPECT_NE(hundredLatencies(1, "ARC_CheckModuleSetting"), hundredLatencies(2, "ARC_CheckModuleSetting"));
}

struct Span
{
    const char* name;
    int shortestMs;
    int longestMs;
};

TEST(RealisticLatency, StaysWithinTheSpanOfItsRequestAndUsesAllOfIt)
{
    for (const auto& [name, shortestMs, longestMs] :
         {Span{"ARC_Open", 280, 340}, Span{"ARC_CheckModuleSetting", 5, 30}, Span{"ARC_StartGNSSraw", 130, 190},
          Span{"ARC_StopGNSS", 90, 150}, Span{"ARC_GetArcVersion", 0, 0}}) {
        const std::vector<milliseconds> latencies = hundredLatencies(1, name);
        const auto [least, most] = std::minmax_element(latencies.begin(), latencies.end());
        EXPECT_GE(*least, milliseconds(shortestMs)) << name;
        EXPECT_LE(*most, milliseconds(longestMs)) << name;
        EXPECT_GE((*most - *least).count(), (longestMs - shortestMs) * 3 / 4) << name;
    }
}

class PlannedEvents : public testing::Test
{
protected:
    static Scenario threeEvents()
    {
        Scenario scenario;
        scenario.events = {
            {milliseconds(100), 22, {1, 2}}, {milliseconds(100), 72, {}}, {milliseconds(5000), 75, {0xFF}}};
        return scenario;
    }

    std::vector<int> idsAt(int ms)
    {
        std::vector<int> ids;
        for (const Modem::Event& event : modem.takeEvents(milliseconds(ms)))
            ids.push_back(event.id);
        return ids;
    }

    Modem modem{threeEvents(), [](LstaSystem) { return Reception{}; }};
};

TEST_F(PlannedEvents, ComeOnceEachAtTheirTimesAndInOrder)
{
    modem.open();
    EXPECT_EQ(modem.nextEvent(milliseconds(0)), milliseconds(100));
    EXPECT_EQ(idsAt(99), std::vector<int>{});
    EXPECT_EQ(idsAt(100), (std::vector<int>{22, 72}));
    EXPECT_EQ(idsAt(200), std::vector<int>{});
    EXPECT_EQ(modem.nextEvent(milliseconds(200)), milliseconds(5000));
    EXPECT_EQ(idsAt(9000), std::vector<int>{75});
    EXPECT_EQ(modem.nextEvent(milliseconds(9000)), std::nullopt);
}

TEST_F(PlannedEvents, CarryTheirPayload)
{
    modem.open();
    EXPECT_EQ(modem.takeEvents(milliseconds(100)).at(0).payload, (std::vector<unsigned char>{1, 2}));
}

TEST_F(PlannedEvents, AreLostWhileTheConnectionIsClosed)
{
    EXPECT_EQ(idsAt(200), std::vector<int>{});
    modem.open();
    EXPECT_EQ(idsAt(300), std::vector<int>{});
}

}  // namespace
