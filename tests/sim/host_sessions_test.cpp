// Several clients of one modem: what is their own and what they share.

#include "sim/host_support.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace host_test;

TEST(HostSessions, HaveNumbersOfTheirOwnThatNeverComeAgain)
{
    VirtualHost host;
    const Client first(host);
    const Client second(host);
    EXPECT_EQ(first.id(), 1U);
    EXPECT_EQ(second.id(), 2U);
    host.disconnect(2);
    EXPECT_EQ(Client(host).id(), 3U);
    EXPECT_EQ(host.sessions().size(), 2U);
}

TEST(HostSessions, AreAsTheirClientsSaid)
{
    VirtualHost host;
    const Client client(host, {"navigator", 77, false, true, 0, 0});
    EXPECT_EQ(client.session().name, "navigator");
    EXPECT_EQ(client.session().pid, 77);
    EXPECT_FALSE(client.session().isOpen);
    EXPECT_TRUE(client.session().hasHandler);
}

TEST(HostSessions, OpenAndCloseConnectionsOfTheirOwn)
{
    VirtualHost host;
    Client first(host);
    Client second(host);
    EXPECT_EQ(first.open(), 0);
    EXPECT_EQ(first.open(), 0) << "open already";
    EXPECT_EQ(first.ask(), 0);
    EXPECT_EQ(second.ask(), 1);
    EXPECT_EQ(second.close(), 1);
    EXPECT_EQ(first.ask(), 0) << "the other's refused close closes nothing";
    EXPECT_EQ(second.open(), 0);
    EXPECT_EQ(first.close(), 0);
    EXPECT_EQ(first.ask(), 1);
    EXPECT_EQ(second.ask(), 0);
    EXPECT_EQ(first.close(), 1);
}

TEST(HostSessions, KeepTheirConnectionWhenTheyComeBackWithIt)
{
    VirtualHost host;
    Client client(host, {"back", 1, true, false, 0, 0});
    EXPECT_TRUE(client.session().isOpen);
    EXPECT_TRUE(host.modem().isOpen());
    EXPECT_EQ(client.ask(), 0);
}

TEST(HostSessions, DoNotOpenTheModemByComing)
{
    VirtualHost host;
    const Client client(host);
    EXPECT_FALSE(host.modem().isOpen());
}

TEST(HostSessions, ShareEngineAndSettings)
{
    VirtualHost host;
    Client first(host);
    Client second(host);
    first.open();
    second.open();
    EXPECT_EQ(first.write("Power/Cpu", "\"max\"").indicator, 1);
    EXPECT_EQ(second.read("Power/Cpu").text, "\"max\"");
    EXPECT_EQ(second.write("Power/Cpu", "\"max\"").indicator, 0);
    EXPECT_EQ(first.start(), 0);
    EXPECT_EQ(host.engine(), EngineState::running);
    EXPECT_EQ(second.stop(), 0);
    EXPECT_EQ(host.engine(), EngineState::off);
    EXPECT_FALSE(host.output().feed().isStarted());
}

/// Two clients with the engine on and LSTA of GPS reported every second.
class RunningForTwo : public testing::Test
{
protected:
    RunningForTwo()
    {
        for (Client* const client : {&first, &second})
            EXPECT_EQ(client->open(), 0);
        EXPECT_EQ(first.start(), 0);
        EXPECT_EQ(first.enableLsta(10, 1), 0);
        EXPECT_TRUE(isRunning());
    }
    /// Both, or neither.
    bool isRunning()
    {
        host.advanceTo(host.now() + milliseconds(2000));
        const bool reports = !host.takeEvents().empty();
        const bool runs = host.engine() == EngineState::running;
        EXPECT_EQ(reports, runs);
        EXPECT_EQ(host.output().feed().isStarted(), runs);
        return runs;
    }

    VirtualHost host{R"("firstFix":{"coldMs":0})"};
    Client first{host};
    Client second{host};
};

TEST_F(RunningForTwo, GoesOnUntilTheLastCloses)
{
    EXPECT_EQ(first.close(), 0);
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(second.close(), 0);
    EXPECT_FALSE(isRunning());
    EXPECT_FALSE(host.modem().isOpen());
}

TEST_F(RunningForTwo, GoesOnUntilTheLastLeavesWithoutClosing)
{
    host.disconnect(first.id());
    EXPECT_TRUE(isRunning());
    host.disconnect(second.id());
    EXPECT_FALSE(isRunning());
    EXPECT_FALSE(host.modem().isOpen());
}

TEST_F(RunningForTwo, StopsRawOutputWhenTheLastLeavesAndNotLater)
{
    host.disconnect(first.id());
    host.disconnect(second.id());
    EXPECT_FALSE(host.output().feed().isStarted());
    EXPECT_EQ(host.sessions().size(), 0U);
}

TEST_F(RunningForTwo, DoesNotCareForOneThatLeavesAfterClosing)
{
    first.close();
    host.disconnect(first.id());
    EXPECT_TRUE(isRunning());
}

TEST_F(RunningForTwo, DoesNotCareForOneThatHasNeverOpened)
{
    const Client third(host);
    first.close();
    host.disconnect(third.id());
    EXPECT_TRUE(isRunning());
    second.close();
    EXPECT_FALSE(isRunning()) << "one that is there and not open keeps nothing running";
}

TEST_F(RunningForTwo, GoesOnWhenAllAreCutOff)
{
    host.cutOff(first.id());
    host.cutOff(second.id());
    EXPECT_EQ(host.sessions().size(), 0U);
    EXPECT_TRUE(isRunning());
    Client back(host, {"back", 1, true, true, 0, 0});
    EXPECT_EQ(back.close(), 0);
    EXPECT_FALSE(isRunning());
}

TEST(HostSessions, HaveTheHandlerOfTheLastRegistration)
{
    VirtualHost host;
    Client client(host, {"", 1, false, false, 0, 0});
    EXPECT_EQ(client.call(Function::RegisterNotification, {Argument::pointer(true)}).code, 0);
    EXPECT_TRUE(client.session().hasHandler);
    EXPECT_EQ(client.call(Function::RegisterNotification, {Argument::pointer(false)}).code, 0);
    EXPECT_FALSE(client.session().hasHandler);
    host.setHandler(client.id(), true);
    EXPECT_TRUE(client.session().hasHandler);
    host.setHandler(client.id(), false);
    EXPECT_FALSE(client.session().hasHandler);
}

TEST(HostSessions, TellHowManyWillHearOfAnEvent)
{
    VirtualHost host;
    const Client deaf(host, {"", 1, true, false, 0, 0});
    const Client closed(host, {"", 1, false, true, 0, 0});
    EXPECT_EQ(host.injectEvents({{milliseconds(0), 75, {}}}), 0U);
    const Client hears(host, {"", 1, true, true, 0, 0});
    const Client hearsToo(host, {"", 1, true, true, 0, 0});
    EXPECT_EQ(host.injectEvents({{milliseconds(0), 75, {}}, {milliseconds(0), 76, {}}}), 2U);
}

TEST(HostSessions, CountTheirCallsAndThoseThatWait)
{
    VirtualHost host;
    Client client(host);
    const Client other(host);
    const auto first = host.begin(client.id(), Function::Open);
    EXPECT_EQ(client.session().calls, 1U);
    EXPECT_EQ(client.session().waiting, 1U);
    const auto second = host.begin(client.id(), Function::StopGNSS);
    EXPECT_EQ(client.session().calls, 2U);
    EXPECT_EQ(client.session().waiting, 2U);
    host.finish(client.id(), {Function::Open, {}}, first);
    EXPECT_EQ(client.session().waiting, 1U);
    host.abandon(client.id());
    EXPECT_EQ(client.session().waiting, 0U);
    EXPECT_EQ(client.session().calls, 2U);
    EXPECT_EQ(other.session().calls, 0U);
    EXPECT_EQ(other.session().waiting, 0U);
    EXPECT_EQ(second.number, 1U);
}

TEST(HostSessions, AddUpTheirCallsByFunction)
{
    VirtualHost host;
    Client first(host);
    Client second(host);
    first.open();
    second.open();
    second.stop();
    host.disconnect(second.id());
    first.close();
    first.close();
    const auto counts = [&](Function function) {
        const auto& each = host.callCounts()[requestOf(function)];
        return std::pair(each.count, each.failed);
    };
    EXPECT_EQ(counts(Function::Open), std::pair(2U, 0U));
    EXPECT_EQ(counts(Function::StopGNSS), std::pair(1U, 0U));
    EXPECT_EQ(counts(Function::Close), std::pair(2U, 1U)) << "the second one was refused";
    EXPECT_EQ(counts(Function::ForceStopGNSS), std::pair(0U, 0U));
}

TEST(HostSessions, CountCallsThatAreAnsweredWithoutTheModem)
{
    VirtualHost host;
    EXPECT_FALSE(host.wantsLook());
    host.count(Function::GetArcVersion);
    host.count(Function::GetArcVersion);
    EXPECT_EQ(host.callCounts()[4].count, 2U);
    EXPECT_EQ(host.callCounts()[4].failed, 0U);
    EXPECT_TRUE(host.wantsLook()) << "time has begun with the first";
}

TEST(HostSessions, NeverCountFewerThanNoCallsThatWait)
{
    VirtualHost host;
    VirtualHost next;
    Client client(host);
    const ModemHost::Begun begun = host.begin(client.id(), Function::Open);
    EXPECT_EQ(client.session().waiting, 1U);
    Client same(next);
    EXPECT_THROW(next.finish(same.id(), {Function::Open, {}}, begun), std::logic_error) << "it began elsewhere";
    EXPECT_EQ(same.session().waiting, 0U);
    Client carried(next, {"carried", 1, false, false, 0, client.session().waiting});
    EXPECT_EQ(next.finish(carried.id(), {Function::Open, {}}, begun).code, 0);
    EXPECT_EQ(carried.session().waiting, 0U);
    EXPECT_THROW(next.abandon(carried.id()), std::logic_error);
}

}  // namespace
