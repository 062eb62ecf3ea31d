#include "coroutine/CoroutineTest.h"

namespace {

namespace async = kelarc::async;
using kelarc::KelArc;
using std::chrono::milliseconds;
using support::Function;
using support::Gate;
using support::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ACoroutine : public CoroutineTest
{
};

Job openReadAndClose(KelArc& modem, support::Journal& journal)
{
    const int opened = co_await async::answer(modem, &KelArc::open);
    const auto [code, elevation] = co_await async::answer(modem, &KelArc::getMinElevation);
    const int closed = co_await async::answer(modem, &KelArc::close);
    journal.add(Kind::event, std::to_string(opened) + ' ' + std::to_string(code) + ' ' + std::to_string(elevation) +
                                 ' ' + std::to_string(closed));
}

TEST_F(ACoroutine, AwaitsOneAnswerAfterTheOther)
{
    arcsim::answerNext(Function::CheckModuleSetting, {support::reply("\"17\"")});
    openReadAndClose(kelarc(), journal);
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("0 0 17 0"));
}

TEST_F(ACoroutine, GoesOnOnTheWorkersThread)
{
    open();
    start([this] { return async::answer(kelarc(), &KelArc::resetAGNSS); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("answer(0)"));
    EXPECT_EQ(threadOfEvent(0), workerThread());
}

TEST_F(ACoroutine, MakesItsRequestWhenItAwaitsAndNotBefore)
{
    {
        auto unused = async::answer(kelarc(), &KelArc::resetAGNSS);
        static_cast<void>(unused);
        settle();
    }
    EXPECT_THAT(arcsim::calls(), IsEmpty());
}

TEST_F(ACoroutine, KeepsTheArgumentsUntilThen)
{
    open();
    const auto request = [this] {
        const std::string key = "Power/Cpu";
        return async::answer(kelarc(), &KelArc::getModuleSetting, key);  // a copy
    };
    arcsim::answerNext(Function::CheckModuleSetting, {support::reply("\"max\"")});
    start(request);
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("answer(0, '\"max\"')"));
    EXPECT_EQ(lastArguments(Function::CheckModuleSetting).front(), "Power/Cpu");
}

TEST_F(ACoroutine, GoesOnAtOnceAfterARefusal)
{
    open();
    start([this] { return async::answer(kelarc(), &KelArc::setMinElevation, 46); });
    EXPECT_THAT(events(), ElementsAre("answer(14, false)"));
    EXPECT_EQ(threadOfEvent(0), std::this_thread::get_id());
}

TEST_F(ACoroutine, IsToldAtOnceThatTheQueueIsFull)
{
    open();
    const Gate gate = holdWorker();
    fillQueue(128);
    start([this] { return async::answer(kelarc(), &KelArc::resetAGNSS); });
    start([this] { return async::answer(kelarc(), &KelArc::close); });
    EXPECT_THAT(events(), ElementsAre("dropped", "dropped"));
    EXPECT_EQ(threadOfEvent(0), std::this_thread::get_id());
}

Job tryUntilAnswered(KelArc& modem, support::Journal& journal, const Gate& gate)
{
    for (unsigned drops = 0;; ++drops) {
        try {
            const int code = co_await async::answer(modem, &KelArc::resetAGNSS);
            journal.add(Kind::event, std::to_string(code) + (drops < 5000 ? " too early" : " after drops"));
            co_return;
        } catch (const std::future_error&) {
            if (drops == 5000)
                gate.open();
        }
    }
}

TEST_F(ACoroutine, MayTryAgainAnyNumberOfTimes)
{
    open();
    const Gate gate = holdWorker();
    fillQueue(128);
    tryUntilAnswered(kelarc(), journal, gate);
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("0 after drops"));
}

TEST_F(ACoroutine, IsToldThatAnOperationDoesNothing)
{
    start([this] { return async::answer(kelarc(), &KelArc::close); });
    EXPECT_THAT(events(), ElementsAre("dropped"));
    open();
    start([this] { return async::answer(kelarc(), &KelArc::open); });
    start([this] { return async::answer(kelarc(), &KelArc::getGnssStatus, kelarc::gnss::SYSTEM{9}); });
    EXPECT_THAT(events(), ElementsAre("dropped", "dropped"));
}

Job queryThenReset(KelArc& modem, support::Journal& journal)
{
    try {
        co_await async::answer(modem, &KelArc::getLstaGnss, kelarc::lsta::TECH::BEIDOU);
    } catch (const std::future_error&) {
        journal.add(Kind::event, "dropped");
    }
    journal.add(Kind::event, outcome::textOf(co_await async::answer(modem, &KelArc::resetAGNSS)));
}

TEST_F(ACoroutine, IsToldOfACancelledLstaQueryAndMayMakeTheNextRequest)
{
    open();
    failTimes(Function::CurrentLSTA, 15, 2);
    duringPause(1, [this] { kelarc().stopGNSS([](int) {}); });
    queryThenReset(kelarc(), journal);
    ASSERT_TRUE(journal.waitFor(Kind::event, 2));
    EXPECT_THAT(events(), ElementsAre("dropped", "answer(0)"));
    EXPECT_EQ(threadOfEvent(0), workerThread());
}

TEST_F(ACoroutine, ThatWaitsWhenTheObjectIsDestroyedGoesOnInTheDestructor)
{
    open();
    arcsim::Answer slow;
    slow.latency = milliseconds(20);
    arcsim::answerAlways(Function::ResetAGNSS, slow);
    for (int i = 0; i < 100; ++i)
        start([this] { return async::answer(kelarc(), &KelArc::resetAGNSS); });
    ASSERT_TRUE(arcsim::waitForCalls(Function::ResetAGNSS, 1));
    destroyAsScripted();
    ASSERT_EQ(events().size(), 100U);
    EXPECT_EQ(events().front(), "answer(0)");
    EXPECT_EQ(events().back(), "dropped");
    EXPECT_EQ(threadOfEvent(99), std::this_thread::get_id());
}

}  // namespace
