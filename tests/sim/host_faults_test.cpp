// Numbers and latencies of calls, and what goes wrong with them.

#include "sim/host_support.h"

#include <gtest/gtest.h>

namespace {

using namespace host_test;

std::vector<int> latencies(ModemHost& host, Function function, int calls)
{
    const Client client(host);
    std::vector<int> times;
    for (int i = 0; i < calls; ++i)
        times.push_back(static_cast<int>(host.begin(client.id(), function).latency.count()));
    return times;
}

std::vector<int> codes(Client& client, int calls)
{
    std::vector<int> all;
    for (int i = 0; i < calls; ++i)
        all.push_back(client.open());
    return all;
}

TEST(HostCalls, AreNumberedByFunctionFromOne)
{
    VirtualHost host;
    const Client first(host);
    const Client second(host);
    EXPECT_EQ(host.begin(first.id(), Function::Open).number, 1U);
    EXPECT_EQ(host.begin(second.id(), Function::Open).number, 2U);
    EXPECT_EQ(host.begin(first.id(), Function::Close).number, 1U);
    EXPECT_EQ(host.begin(first.id(), Function::Open).number, 3U);
    host.count(Function::Open);
    EXPECT_EQ(host.begin(first.id(), Function::Open).number, 5U);
}

TEST(HostCalls, TakeAsLongAsTheSeedSays)
{
    VirtualHost host(R"("seed":1)", true);
    EXPECT_EQ(latencies(host, Function::Open, 4), (std::vector<int>{308, 315, 335, 331}));
    VirtualHost again(R"("seed":1)", true);
    EXPECT_EQ(latencies(again, Function::StopGNSS, 2), (std::vector<int>{146, 105}));
    EXPECT_EQ(latencies(again, Function::Open, 4), (std::vector<int>{308, 315, 335, 331}));
    VirtualHost other(R"("seed":2)", true);
    EXPECT_EQ(latencies(other, Function::Open, 4), (std::vector<int>{326, 319, 335, 280}));
}

TEST(HostCalls, TakeNoTimeWithoutLatencies)
{
    VirtualHost host;
    EXPECT_EQ(latencies(host, Function::Open, 3), (std::vector<int>{0, 0, 0}));
    host.setRealisticLatency(true);
    const std::vector<int> times = latencies(host, Function::Open, 1);
    EXPECT_GE(times[0], 280);
    EXPECT_LE(times[0], 340);
    host.setRealisticLatency(false);
    EXPECT_EQ(latencies(host, Function::Open, 1), (std::vector<int>{0}));
}

TEST(HostCalls, LetTheEngineStartAtOnceWithoutLatencies)
{
    VirtualHost host;
    Client client(host);
    client.open();
    client.start();
    EXPECT_EQ(host.engine(), EngineState::running);
    client.stop();
    host.setRealisticLatency(true);
    client.start();
    EXPECT_EQ(host.engine(), EngineState::starting);
    host.timeAfter(milliseconds(599));
    EXPECT_EQ(host.engine(), EngineState::starting);
    host.timeAfter(milliseconds(1));
    EXPECT_EQ(host.engine(), EngineState::running);
}

TEST(HostCalls, AreDueWhenTheirLatencyHasPassed)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","times":9,"latencyMs":120}])");
    const Client client(host);
    EXPECT_EQ(host.begin(client.id(), Function::Open).due, milliseconds(120));
    host.advanceTo(milliseconds(1000));
    const auto begun = host.begin(client.id(), Function::Open);
    EXPECT_EQ(begun.latency, milliseconds(120));
    EXPECT_EQ(begun.due, milliseconds(1120));
}

TEST(HostCalls, TakeTheLatencyOfAFaultAndNotTheirOwn)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","call":2,"latencyMs":7},
                                  {"function":"ARC_Open","call":3,"latencyMs":0}])",
                     true);
    const std::vector<int> times = latencies(host, Function::Open, 4);
    EXPECT_GE(times[0], 280);
    EXPECT_EQ(times[1], 7);
    EXPECT_EQ(times[2], 0);
    EXPECT_GE(times[3], 280);
}

TEST(HostFaults, AnswerWithoutAskingTheModem)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","call":1,"code":32},
                                  {"function":"ARC_Close","call":1,"code":15},
                                  {"function":"ARC_CheckModuleSetting","call":1,"code":-7}])");
    Client client(host);
    EXPECT_EQ(client.open(), 32);
    EXPECT_FALSE(client.session().isOpen);
    EXPECT_EQ(client.ask(), 1);
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(client.write("Power/Cpu", "\"max\"").code, -7);
    EXPECT_EQ(client.read("Power/Cpu").text, "\"std\"");
    EXPECT_EQ(client.close(), 15);
    EXPECT_EQ(client.ask(), 0);
    EXPECT_EQ(host.callCounts()[requestOf(Function::Open)].failed, 1U);
    EXPECT_EQ(host.callCounts()[requestOf(Function::Close)].failed, 1U);
}

TEST(HostFaults, OfARegistrationLeaveTheHandlerAsItWas)
{
    VirtualHost host(R"("faults":[{"function":"ARC_RegisterNotification","call":1,"code":5}])");
    Client client(host, {"", 1, false, false, 0, 0});
    EXPECT_EQ(client.call(Function::RegisterNotification, {Argument::pointer(true)}).code, 5);
    EXPECT_FALSE(client.session().hasHandler);
}

TEST(HostFaults, CountInjectedCallsFromNowOn)
{
    VirtualHost host;
    Client client(host);
    EXPECT_EQ(codes(client, 2), (std::vector<int>{0, 0}));
    auto fault = faultWith(Function::Open, 32);
    fault.firstCall = 2;
    fault.callCount = 2;
    host.injectFault(fault);
    ASSERT_EQ(host.injectedFaults().size(), 1U);
    EXPECT_EQ(host.injectedFaults()[0].firstCall, 4U);
    EXPECT_EQ(codes(client, 5), (std::vector<int>{0, 32, 32, 0, 0}));
    EXPECT_TRUE(host.injectedFaults().empty());
}

TEST(HostFaults, CountInjectedCallsOfTheirOwnFunction)
{
    VirtualHost host;
    Client client(host);
    EXPECT_EQ(codes(client, 3), (std::vector<int>{0, 0, 0}));
    auto fault = faultWith(Function::StopGNSS, 32);
    fault.firstCall = 1;
    host.injectFault(fault);
    EXPECT_EQ(client.stop(), 32);
    EXPECT_EQ(client.stop(), 0);
}

TEST(HostFaults, InjectedOnesGoBeforePlannedOnesAndTheLatestFirst)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","fromMs":0,"code":5}])");
    Client client(host);
    EXPECT_EQ(client.open(), 5);
    host.injectFault(faultWith(Function::Open, 6));
    EXPECT_EQ(client.open(), 6);
    host.injectFault(faultWith(Function::Open, 7));
    EXPECT_EQ(codes(client, 2), (std::vector<int>{7, 7})) << "for ever";
    EXPECT_EQ(host.dropFaults(std::nullopt), 2U);
    EXPECT_EQ(client.open(), 5) << "the scenario's stay";
    EXPECT_EQ(host.dropFaults(std::nullopt), 0U);
}

TEST(HostFaults, AreDroppedByFunction)
{
    VirtualHost host;
    Client client(host);
    host.injectFault(faultWith(Function::Open, 6));
    host.injectFault(faultWith(Function::StopGNSS, 7));
    EXPECT_EQ(host.dropFaults(requestOf(Function::Close)), 0U);
    EXPECT_EQ(host.dropFaults(requestOf(Function::Open)), 1U);
    EXPECT_EQ(client.open(), 0);
    EXPECT_EQ(client.stop(), 7);
}

TEST(HostFaults, HoldInTheirStretchOfScenarioTime)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","fromMs":100,"untilMs":200,"code":6}])");
    Client client(host);
    const std::pair<int, int> expected[] = {{0, 0}, {99, 0}, {100, 6}, {199, 6}, {200, 0}};
    for (const auto& [time, code] : expected) {
        host.advanceTo(milliseconds(time));
        EXPECT_EQ(client.open(), code) << time;
    }
}

TEST(HostFaults, AreDecidedWhenACallBegins)
{
    VirtualHost host(R"("faults":[{"function":"ARC_Open","fromMs":100,"untilMs":200,"code":6,"latencyMs":500}])");
    const Client client(host);
    host.advanceTo(milliseconds(150));
    const auto begun = host.begin(client.id(), Function::Open);
    EXPECT_EQ(begun.fault.code, 6);
    EXPECT_EQ(host.finish(client.id(), {Function::Open, {}}, begun).code, 6);
    EXPECT_EQ(host.now(), milliseconds(650));
}

TEST(HostFaults, LetACallHangForTheOneWhoWaits)
{
    VirtualHost host(R"("faults":[{"function":"ARC_StopGNSS","call":1,"hang":true}])");
    const Client client(host);
    EXPECT_TRUE(host.begin(client.id(), Function::StopGNSS).fault.hangs);
    EXPECT_FALSE(host.begin(client.id(), Function::StopGNSS).fault.hangs);
}

TEST(HostFaults, DistortWhatTheModemAnswers)
{
    VirtualHost host(R"("faults":[
        {"function":"ARC_CheckModuleSetting","call":1,"replyLength":8},
        {"function":"ARC_CheckModuleSetting","call":2,"quotes":false},
        {"function":"ARC_GetRilVersion","call":1,"replyLength":30},
        {"function":"ARC_CurrentLSTA","call":1,"indicator":7}])");
    Client client(host);
    client.open();
    EXPECT_EQ(client.read("Power/Cpu").text, "\"stdxxx\"");
    EXPECT_EQ(client.read("Power/Cpu").text, "std");
    EXPECT_EQ(client.read("Power/Cpu").text, "\"std\"");
    EXPECT_EQ(client.versions().secondText, "Modem 1.0 (simulated)xxxxxxxxx");
    const auto lsta = [&] {
        return client.call(Function::CurrentLSTA, {Argument::of(11), Argument::pointer(true)}).lsta;
    };
    EXPECT_EQ(lsta()->indicator, 7);
    EXPECT_EQ(lsta()->indicator, 1001);
}

}  // namespace
