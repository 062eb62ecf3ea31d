#include "async/Outcome.h"
#include "support/KelArcTest.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace {

using kelarc::KelArc;
using kelarc::async::request;
using kelarc::async::Timer;
using std::chrono::milliseconds;
using support::Function;
using support::Gate;

constexpr std::chrono::minutes kLong{30};

std::size_t threadsOfThisProcess()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class ALimit : public support::KelArcTest
{
protected:
    ~ALimit() override { destroy(); }  // before the timer

    Timer timer;
};

TEST_F(ALimit, EndsARequestThatWaitsTooLong)
{
    const Gate gate = holdWorker();
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds(20)), &KelArc::getArcVersion)), "late");
}

TEST_F(ALimit, EndsARequestInWords)
{
    const Gate gate = holdWorker();
    try {
        request(kelarc(), timer.within(milliseconds(1)), &KelArc::getArcVersion).get();
        FAIL() << "answered";
    } catch (const std::runtime_error& late) {
        EXPECT_STREQ(late.what(), "no answer from the modem within the limit");
    }
}

TEST_F(ALimit, EndsARequestWhoseCallTakesTooLong)
{
    const Gate gate;
    arcsim::Answer held;
    held.during = gate.holder();
    arcsim::answerNext(Function::ResetAGNSS, {held});
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds(20)), &KelArc::resetAGNSS)), "late");
}

TEST_F(ALimit, EndsNoRequestBeforeItHasPassed)
{
    const Gate gate = holdWorker();
    const auto begin = std::chrono::steady_clock::now();
    std::future<int> sooner = request(kelarc(), timer.within(milliseconds(30)), &KelArc::resetAGNSS);
    std::future<int> later = request(kelarc(), timer.within(milliseconds(90)), &KelArc::resetAGNSS);
    std::future<int> between = request(kelarc(), timer.within(milliseconds(60)), &KelArc::resetAGNSS);
    EXPECT_EQ(outcome::of(std::move(sooner)), "late");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(30));
    EXPECT_EQ(outcome::of(std::move(between)), "late");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(60));
    EXPECT_EQ(outcome::of(std::move(later)), "late");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(90));
}

TEST_F(ALimit, IsCountedFromEachRequestItIsUsedFor)
{
    const Gate gate = holdWorker();
    const Timer::Limit limit = timer.within(milliseconds(40));
    EXPECT_EQ(outcome::of(request(kelarc(), limit, &KelArc::resetAGNSS)), "late");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(outcome::of(request(kelarc(), limit, &KelArc::resetAGNSS)), "late");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(40));
}

TEST_F(ALimit, LeavesTheLateRequestToBeDone)
{
    open();
    {
        const Gate gate = holdWorker();
        EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds(1)), &KelArc::resetAGNSS)), "late");
    }
    settle();
    EXPECT_EQ(callCount(Function::ResetAGNSS), 2U);  // the one that held the worker, and the late one
}

TEST_F(ALimit, LeavesAnAnswerInTimeAlone)
{
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(kLong), &KelArc::open)), "answer(0)");
    arcsim::answerNext(Function::CheckModuleSetting, {support::reply("\"17\"")});
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(kLong), &KelArc::getModuleSetting, "Sens/MinElevAngle")),
              "answer(0, '\"17\"')");
}

TEST_F(ALimit, LeavesADroppedRequestDropped)
{
    EXPECT_EQ(outcome::now(request(kelarc(), timer.within(kLong), &KelArc::close)), "dropped");
}

TEST_F(ALimit, IsForgottenWhenTheRequestHasEnded)
{
    open();
    {
        const Gate gate = holdWorker();
        std::future<int> waiting = request(kelarc(), timer.within(kLong), &KelArc::resetAGNSS);
        EXPECT_EQ(timer.pending(), 1U);
        EXPECT_EQ(outcome::now(request(kelarc(), timer.within(kLong), &KelArc::open)), "dropped");
        EXPECT_EQ(timer.pending(), 1U);
        gate.open();
        EXPECT_EQ(outcome::of(std::move(waiting)), "answer(0)");
        EXPECT_EQ(timer.pending(), 0U);
    }
    EXPECT_EQ(outcome::now(request(kelarc(), timer.within(kLong), &KelArc::setMinElevation, 1)), "answer(14, false)");
    EXPECT_EQ(timer.pending(), 0U);
}

TEST_F(ALimit, OfNothingAndLessIsLateAtOnce)
{
    const Gate gate = holdWorker();
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds(0)), &KelArc::resetAGNSS)), "late");
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds(-5)), &KelArc::resetAGNSS)), "late");
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds::min()), &KelArc::resetAGNSS)), "late");
}

TEST_F(ALimit, MayBeLongerThanTheClockLasts)
{
    open();
    EXPECT_EQ(outcome::of(request(kelarc(), timer.within(milliseconds::max()), &KelArc::resetAGNSS)), "answer(0)");
}

TEST_F(ALimit, TakesNoThreadOfItsOwn)
{
    const Gate gate = holdWorker();
    const std::size_t before = threadsOfThisProcess();
    std::vector<std::future<int>> requests;
    for (int i = 0; i < 100; ++i)
        requests.push_back(request(kelarc(), timer.within(kLong), &KelArc::resetAGNSS));
    EXPECT_EQ(timer.pending(), 100U);
    EXPECT_EQ(threadsOfThisProcess(), before);
}

TEST_F(ALimit, IsVoidOnceItsTimerIsGone)
{
    open();
    auto passing = std::make_optional<Timer>();
    const Gate gate = holdWorker();
    const Timer::Limit limit = passing->within(milliseconds(1));
    std::future<int> before = request(kelarc(), passing->within(kLong), &KelArc::resetAGNSS);
    passing.reset();
    std::future<int> after = request(kelarc(), limit, &KelArc::resetAGNSS);
    gate.open();
    EXPECT_EQ(outcome::of(std::move(before)), "answer(0)");
    EXPECT_EQ(outcome::of(std::move(after)), "answer(0)");
}

TEST_F(ALimit, AndAnAnswerThatComeTogetherEndTheRequestOnce)
{
    open();
    arcsim::Answer slow;
    slow.latency = milliseconds(1);
    arcsim::answerAlways(Function::ResetAGNSS, slow);
    for (int i = 0; i < 300; ++i) {
        const std::string ended =
            outcome::of(request(kelarc(), timer.within(milliseconds(i % 3)), &KelArc::resetAGNSS));
        EXPECT_TRUE(ended == "late" || ended == "answer(0)") << ended;
    }
    EXPECT_EQ(timer.pending(), 0U);
}

}  // namespace
