#include "modem/Faults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

namespace {

using arcsim::modem::distorted;
using arcsim::modem::Fault;
using arcsim::modem::FaultEffect;
using arcsim::modem::FaultPlan;
using arcsim::modem::Latency;
using arcsim::modem::Lsta;
using arcsim::modem::Reply;
using std::chrono::milliseconds;

constexpr milliseconds kBegin{0};

std::vector<double> draws(const Latency& latency, unsigned count, std::uint64_t seed = 1, std::size_t request = 3)
{
    std::vector<double> times;
    for (unsigned number = 1; number <= count; ++number)
        times.push_back(static_cast<double>(latency.of(seed, request, number).count()));
    return times;
}

double meanOf(const std::vector<double>& values)
{
    double sum = 0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

double deviationOf(const std::vector<double>& values)
{
    const double mean = meanOf(values);
    double squares = 0;
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    return std::sqrt(squares / static_cast<double>(values.size()));
}

Latency even(int a, int b)
{
    return {Latency::Shape::even, milliseconds(a), milliseconds(b)};
}

Latency normal(int mean, int deviation)
{
    return {Latency::Shape::normal, milliseconds(mean), milliseconds(deviation)};
}

Fault faultOf(std::size_t request)
{
    Fault fault;
    fault.request = request;
    return fault;
}

Fault faultWithCode(int code, std::size_t request = 1)
{
    Fault fault = faultOf(request);
    fault.code = code;
    return fault;
}

std::vector<int> codesOf(const std::vector<Fault>& faults)
{
    std::vector<int> codes;
    for (const Fault& fault : faults)
        codes.push_back(fault.code.value_or(0));
    return codes;
}

TEST(Latency, ThatIsFixedIsAlwaysTheSame)
{
    for (const double time : draws(Latency::fixed(milliseconds(250)), 1000))
        ASSERT_EQ(time, 250);
}

TEST(Latency, ThatIsEvenTakesEveryValueBetweenItsEndsAndNoOther)
{
    const std::vector<double> times = draws(even(10, 14), 10000);
    EXPECT_EQ(std::set<double>(times.begin(), times.end()), (std::set<double>{10, 11, 12, 13, 14}));
    for (const double value : {10, 11, 12, 13, 14}) {
        const auto count = std::count(times.begin(), times.end(), value);
        EXPECT_GT(count, 1800) << value;
        EXPECT_LT(count, 2200) << value;
    }
}

TEST(Latency, ThatIsEvenSpreadsOverAWideSpan)
{
    const std::vector<double> times = draws(even(0, 86400000), 10000);
    EXPECT_GE(*std::min_element(times.begin(), times.end()), 0);
    EXPECT_LT(*std::min_element(times.begin(), times.end()), 100000);
    EXPECT_LE(*std::max_element(times.begin(), times.end()), 86400000);
    EXPECT_GT(*std::max_element(times.begin(), times.end()), 86300000);
    EXPECT_NEAR(meanOf(times), 43200000, 1000000);
    EXPECT_NEAR(deviationOf(times), 24941532, 700000);  // span / sqrt(12)
}

TEST(Latency, ThatIsNormalHasItsMeanAndDeviation)
{
    const std::vector<double> times = draws(normal(1000, 100), 10000);
    EXPECT_NEAR(meanOf(times), 1000, 5);
    EXPECT_NEAR(deviationOf(times), 100, 4);
    const auto within = [&](double distance) {
        return std::count_if(times.begin(), times.end(), [&](double t) { return std::abs(t - 1000) <= distance; });
    };
    EXPECT_NEAR(static_cast<double>(within(100)), 6830, 200);  // one deviation, 68.3 %
    EXPECT_NEAR(static_cast<double>(within(200)), 9545, 100);  // two, 95.4 %
}

TEST(Latency, ThatIsNormalIsNeverBelowZero)
{
    const std::vector<double> times = draws(normal(10, 1000), 10000);
    EXPECT_EQ(*std::min_element(times.begin(), times.end()), 0);
    EXPECT_GT(*std::max_element(times.begin(), times.end()), 2000);
    EXPECT_EQ(draws(normal(7, 0), 3), (std::vector<double>{7, 7, 7}));
}

TEST(Latency, RepeatsWithTheSeedAndDiffersWithoutIt)
{
    for (const Latency& latency : {even(0, 100000), normal(100000, 20000)}) {
        EXPECT_EQ(draws(latency, 50), draws(latency, 50));
        EXPECT_NE(draws(latency, 50), draws(latency, 50, 2));
        EXPECT_NE(draws(latency, 50), draws(latency, 50, 1, 4));
    }
}

TEST(FaultPlan, TakesInjectedFaultsBeforePlannedOnesAndTheLatestFirst)
{
    Fault planned = faultWithCode(5);
    planned.from = kBegin;
    FaultPlan plan(1, {planned});
    EXPECT_EQ(plan.take(1, 1, kBegin).code, 5);
    plan.inject(faultWithCode(6), 1);
    EXPECT_EQ(plan.take(1, 2, kBegin).code, 6);
    plan.inject(faultWithCode(7), 2);
    EXPECT_EQ(plan.take(1, 3, kBegin).code, 7);
    EXPECT_EQ(codesOf(plan.injected()), (std::vector<int>{7, 6}));
}

TEST(FaultPlan, TakesPlannedFaultsInTheirOrder)
{
    Fault first = faultWithCode(5);
    first.times = 1;
    Fault second = faultWithCode(6);
    second.from = kBegin;
    FaultPlan plan(1, {first, second});
    EXPECT_EQ(plan.take(1, 1, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 2, kBegin).code, 6);
}

TEST(FaultPlan, HoldsAnInjectedFaultWithoutConditionsForEver)
{
    FaultPlan plan(1, {});
    plan.inject(faultWithCode(6), 41);
    for (unsigned number = 1; number < 1000; ++number)
        ASSERT_EQ(plan.take(1, number, milliseconds(number * 1000000)).code, 6);
    EXPECT_EQ(plan.take(2, 1, kBegin).code, std::nullopt) << "another request";
    EXPECT_EQ(plan.injected().size(), 1U);
}

TEST(FaultPlan, UsesAFaultAsOftenAsItSays)
{
    Fault fault = faultWithCode(5);
    fault.times = 2;
    FaultPlan plan(1, {fault});
    EXPECT_EQ(plan.take(2, 1, kBegin).code, std::nullopt) << "another request does not count";
    EXPECT_EQ(plan.take(1, 7, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 8, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 9, kBegin).code, std::nullopt);
}

TEST(FaultPlan, CountsOnlyCallsThatMeetTheOtherConditions)
{
    Fault fault = faultWithCode(5);
    fault.times = 1;
    fault.firstCall = 2;
    fault.callCount = 3;
    fault.from = milliseconds(100);
    FaultPlan plan(1, {fault});
    EXPECT_EQ(plan.take(1, 1, milliseconds(200)).code, std::nullopt);
    EXPECT_EQ(plan.take(1, 2, milliseconds(99)).code, std::nullopt);
    EXPECT_EQ(plan.take(1, 3, milliseconds(100)).code, 5);
    EXPECT_EQ(plan.take(1, 4, milliseconds(100)).code, std::nullopt);
}

TEST(FaultPlan, CountsTheCallsOfAnInjectedFaultFromWhenItWasInjected)
{
    FaultPlan plan(1, {});
    Fault fault = faultWithCode(5);
    fault.firstCall = 2;
    fault.callCount = 2;
    plan.inject(fault, 10);
    EXPECT_EQ(plan.injected().at(0).firstCall, 12U);
    EXPECT_EQ(plan.take(1, 2, kBegin).code, std::nullopt);
    EXPECT_EQ(plan.take(1, 11, kBegin).code, std::nullopt);
    EXPECT_EQ(plan.take(1, 12, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 13, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 14, kBegin).code, std::nullopt);
}

TEST(FaultPlan, LetsALaterFaultAddWhatEarlierOnesLeftOpen)
{
    Fault first = faultWithCode(5);
    first.from = kBegin;
    first.replyLength = 10;
    Fault second = faultWithCode(6);
    second.from = kBegin;
    second.latency = Latency::fixed(milliseconds(20));
    second.indicator = 7;
    Fault third = faultOf(1);
    third.from = kBegin;
    third.latency = Latency::fixed(milliseconds(30));
    third.indicator = 8;
    third.replyLength = 11;
    third.hangs = true;
    third.withoutQuotes = true;
    FaultPlan plan(1, {first, second, third});
    const FaultEffect effect = plan.take(1, 1, kBegin);
    EXPECT_EQ(effect.code, 5);
    EXPECT_EQ(effect.latency, milliseconds(20));
    EXPECT_EQ(effect.indicator, 7);
    EXPECT_EQ(effect.replyLength, 10U);
    EXPECT_TRUE(effect.hangs);
    EXPECT_TRUE(effect.withoutQuotes);
}

TEST(FaultPlan, UsesEveryFaultThatApplies)
{
    Fault first = faultWithCode(5);
    first.times = 1;
    Fault second = faultWithCode(6);
    second.times = 2;
    FaultPlan plan(1, {first, second});
    EXPECT_EQ(plan.take(1, 1, kBegin).code, 5);
    EXPECT_EQ(plan.take(1, 2, kBegin).code, 6);
    EXPECT_EQ(plan.take(1, 3, kBegin).code, std::nullopt);
}

TEST(FaultPlan, SaysNothingWhenNothingApplies)
{
    FaultPlan plan(1, {});
    const FaultEffect effect = plan.take(1, 1, kBegin);
    EXPECT_EQ(effect.code, std::nullopt);
    EXPECT_EQ(effect.latency, std::nullopt);
    EXPECT_EQ(effect.indicator, std::nullopt);
    EXPECT_EQ(effect.replyLength, std::nullopt);
    EXPECT_FALSE(effect.hangs);
    EXPECT_FALSE(effect.withoutQuotes);
}

TEST(FaultPlan, DrawsLatenciesFromItsSeed)
{
    Fault fault = faultOf(1);
    fault.latency = even(0, 100000);
    const auto latencyOf = [&](std::uint64_t seed, unsigned number) {
        FaultPlan plan(seed, {fault});
        return *plan.take(1, number, kBegin).latency;
    };
    EXPECT_EQ(latencyOf(1, 1), latencyOf(1, 1));
    EXPECT_NE(latencyOf(1, 1), latencyOf(1, 2));
    EXPECT_NE(latencyOf(1, 1), latencyOf(2, 1));
}

TEST(FaultPlan, DropsInjectedFaultsOfOneRequestOrAll)
{
    Fault planned = faultWithCode(5);
    planned.from = kBegin;
    FaultPlan plan(1, {planned});
    plan.inject(faultWithCode(6), 0);
    plan.inject(faultWithCode(7, 2), 0);
    plan.inject(faultWithCode(8), 0);
    plan.inject(faultWithCode(9, 3), 0);
    plan.clearInjected(1);
    EXPECT_EQ(codesOf(plan.injected()), (std::vector<int>{9, 7}));
    EXPECT_EQ(plan.take(1, 1, kBegin).code, 5) << "the planned one stays";
    plan.clearInjected(4);
    EXPECT_EQ(codesOf(plan.injected()), (std::vector<int>{9, 7}));
    plan.clearInjected();
    EXPECT_TRUE(plan.injected().empty());
    EXPECT_EQ(plan.take(2, 1, kBegin).code, std::nullopt);
}

TEST(FaultPlan, ListsInjectedFaultsWithTheTimesThatAreLeft)
{
    FaultPlan plan(1, {});
    Fault fault = faultWithCode(5);
    fault.times = 3;
    plan.inject(fault, 0);
    plan.take(1, 1, kBegin);
    ASSERT_EQ(plan.injected().size(), 1U);
    EXPECT_EQ(plan.injected()[0].times, 2U);
    EXPECT_EQ(plan.injected()[0].code, 5);
    plan.take(1, 2, kBegin);
    EXPECT_EQ(plan.injected().at(0).times, 1U);
    plan.take(1, 3, kBegin);
    EXPECT_TRUE(plan.injected().empty());
}

TEST(FaultPlan, ListsNoInjectedFaultWhoseCallsHaveComeOrWhoseTimeIsOver)
{
    FaultPlan plan(1, {});
    Fault byCall = faultWithCode(5);
    byCall.firstCall = 1;
    byCall.callCount = 2;
    plan.inject(byCall, 0);
    Fault byTime = faultWithCode(6, 2);
    byTime.until = milliseconds(100);
    plan.inject(byTime, 0);
    plan.take(1, 2, milliseconds(99));
    EXPECT_EQ(codesOf(plan.injected()), (std::vector<int>{6, 5})) << "the first call may be late";
    EXPECT_EQ(plan.take(1, 1, milliseconds(99)).code, 5);
    EXPECT_EQ(codesOf(plan.injected()), (std::vector<int>{6}));
    plan.take(1, 3, milliseconds(100));
    EXPECT_TRUE(plan.injected().empty());
}

TEST(FaultPlan, KnowsTheNextMomentAtWhichAPlannedFaultBeginsOrEnds)
{
    Fault first = faultWithCode(5);
    first.from = milliseconds(100);
    first.until = milliseconds(300);
    Fault second = faultWithCode(6, 2);
    second.until = milliseconds(200);
    FaultPlan plan(1, {first, second, faultWithCode(7)});
    EXPECT_EQ(plan.nextEdge(milliseconds(0)), milliseconds(100));
    EXPECT_EQ(plan.nextEdge(milliseconds(99)), milliseconds(100));
    EXPECT_EQ(plan.nextEdge(milliseconds(100)), milliseconds(200));
    EXPECT_EQ(plan.nextEdge(milliseconds(200)), milliseconds(300));
    EXPECT_EQ(plan.nextEdge(milliseconds(300)), std::nullopt);
    EXPECT_EQ(FaultPlan(1, {}).nextEdge(kBegin), std::nullopt);
}

Reply replyOf(std::optional<std::string> text, std::optional<std::string> secondText = {})
{
    Reply reply;
    reply.text = std::move(text);
    reply.secondText = std::move(secondText);
    return reply;
}

FaultEffect withLength(std::size_t length)
{
    FaultEffect effect;
    effect.replyLength = length;
    return effect;
}

FaultEffect withoutQuotes()
{
    FaultEffect effect;
    effect.withoutQuotes = true;
    return effect;
}

TEST(Reply, WithoutAnEffectStaysAsItIs)
{
    Reply reply = replyOf("\"std\"", "more");
    reply.lsta = Lsta{1000, 1, 41.5};
    const Reply same = distorted(reply, FaultEffect{});
    EXPECT_EQ(same.text, "\"std\"");
    EXPECT_EQ(same.secondText, "more");
    EXPECT_EQ(same.lsta->indicator, 1000);
    EXPECT_EQ(same.lsta->status, 1);
    EXPECT_EQ(same.lsta->value, 41.5);
}

TEST(Reply, IsPaddedBeforeAClosingQuote)
{
    EXPECT_EQ(distorted(replyOf("\"std\""), withLength(8)).text, "\"stdxxx\"");
    EXPECT_EQ(distorted(replyOf("\"\""), withLength(3)).text, "\"x\"");
}

TEST(Reply, IsPaddedAtItsEndIfThereIsNoQuote)
{
    EXPECT_EQ(distorted(replyOf("std"), withLength(6)).text, "stdxxx");
    EXPECT_EQ(distorted(replyOf(""), withLength(2)).text, "xx");
}

TEST(Reply, IsPaddedInBothTexts)
{
    const Reply reply = distorted(replyOf("RIL", "\"Modem\""), withLength(9));
    EXPECT_EQ(reply.text, "RILxxxxxx");
    EXPECT_EQ(reply.secondText, "\"Modemxx\"");
}

TEST(Reply, IsNeverCut)
{
    EXPECT_EQ(distorted(replyOf("\"std\""), withLength(5)).text, "\"std\"");
    EXPECT_EQ(distorted(replyOf("\"std\""), withLength(1)).text, "\"std\"");
}

TEST(Reply, WithoutTextsHasNoneAfterwardsEither)
{
    FaultEffect effect = withLength(100);
    effect.withoutQuotes = true;
    EXPECT_EQ(distorted(Reply{}, effect).text, std::nullopt);
    EXPECT_EQ(distorted(Reply{}, effect).secondText, std::nullopt);
}

TEST(Reply, LosesItsQuotesInBothTexts)
{
    const Reply reply = distorted(replyOf("\"s\"td\"", "\"\""), withoutQuotes());
    EXPECT_EQ(reply.text, "std");
    EXPECT_EQ(reply.secondText, "");
}

TEST(Reply, IsPaddedAtItsEndWhenItHasLostItsQuotes)
{
    FaultEffect effect = withLength(8);
    effect.withoutQuotes = true;
    EXPECT_EQ(distorted(replyOf("\"std\""), effect).text, "stdxxxxx");
}

TEST(Reply, GetsAnotherIndicatorIfItHasAnLsta)
{
    FaultEffect effect;
    effect.indicator = 77;
    Reply reply;
    reply.lsta = Lsta{1000, 1, 41.5};
    EXPECT_EQ(distorted(reply, effect).lsta->indicator, 77);
    EXPECT_EQ(distorted(reply, effect).lsta->status, 1);
    EXPECT_FALSE(distorted(Reply{}, effect).lsta);
    EXPECT_EQ(distorted(Reply{}, effect).indicator, std::nullopt) << "the write indicator is another one";
}

}  // namespace
