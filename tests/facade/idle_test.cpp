#include "kelarc/idle.h"
#include "support/KelArcTest.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <utility>

namespace {

std::function<void()> g_afterTheFirstQuestion;

/// What the library answers, and then what a test wants to happen before the next question.
std::uint32_t asked(const kelarc::KelArc& modem, const char* question)
{
    using Question = std::uint32_t (kelarc::KelArc::*)() const;
    const std::array<void*, 2> pointer{::dlsym(RTLD_NEXT, question), nullptr};
    Question inTheLibrary = nullptr;
    static_assert(sizeof inTheLibrary == sizeof pointer, "function and adjustment");
    std::memcpy(&inTheLibrary, &pointer, sizeof inTheLibrary);
    const std::uint32_t answer = (modem.*inTheLibrary)();
    if (const auto action = std::exchange(g_afterTheFirstQuestion, nullptr))
        action();
    return answer;
}

}  // namespace

// Found before the library's.
std::uint32_t kelarc::KelArc::getPendingTasks() const
{
    return asked(*this, "_ZNK6kelarc6KelArc15getPendingTasksEv");
}
std::uint32_t kelarc::KelArc::getRunningTaskId() const
{
    return asked(*this, "_ZNK6kelarc6KelArc16getRunningTaskIdEv");
}

namespace {

using kelarc::isIdle;
using kelarc::waitUntilIdle;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using support::Function;

class Idle : public support::KelArcTest
{
};

TEST_F(Idle, IsAnObjectOfWhichNothingWasRequested)
{
    EXPECT_TRUE(isIdle(kelarc()));
    EXPECT_TRUE(waitUntilIdle(kelarc(), seconds(0)));
}

TEST_F(Idle, IsNotWhatHasAnsweredButNotEnded)
{
    const support::Gate answered;
    kelarc().getArcVersion([held = answered.holder()](int, std::string&&) { held(); });
    ASSERT_TRUE(answered.waitUntilEntered());
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    EXPECT_FALSE(isIdle(kelarc()));
    EXPECT_FALSE(waitUntilIdle(kelarc(), milliseconds(5)));
    answered.open();
    EXPECT_TRUE(waitUntilIdle(kelarc(), seconds(30)));
    EXPECT_TRUE(isIdle(kelarc()));
}

TEST_F(Idle, IsNotWhatWaitsOrRuns)
{
    const support::Gate gate = holdWorker();
    EXPECT_FALSE(isIdle(kelarc())) << "one runs";
    kelarc().getArcVersion([](int, std::string&&) {});
    EXPECT_FALSE(isIdle(kelarc())) << "one runs and one waits";
    gate.open();
    EXPECT_TRUE(waitUntilIdle(kelarc(), seconds(30)));
}

TEST_F(Idle, IsNotTheObjectToItsOwnAnswer)
{
    std::atomic<int> seen{-1};
    kelarc().getArcVersion([&](int, std::string&&) { seen = isIdle(kelarc()) ? 1 : 0; });
    EXPECT_TRUE(waitUntilIdle(kelarc(), seconds(30)));
    EXPECT_EQ(seen, 0);
}

TEST_F(Idle, IsWhatHasEndedBeforeItsCallbackIsDestroyed)
{
    const support::Gate destroyed;
    kelarc().getArcVersion(
        [held = std::shared_ptr<void>(nullptr, [hold = destroyed.holder()](void*) { hold(); })](int, std::string&&) {});
    ASSERT_TRUE(destroyed.waitUntilEntered());
    EXPECT_TRUE(isIdle(kelarc()));
}

TEST_F(Idle, IsWaitedForAsLongAsTheLimitSays)
{
    const support::Gate gate = holdWorker();
    const auto begin = steady_clock::now();
    EXPECT_FALSE(waitUntilIdle(kelarc(), milliseconds(50)));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
    EXPECT_FALSE(waitUntilIdle(kelarc(), milliseconds(0)));
    EXPECT_FALSE(waitUntilIdle(kelarc(), milliseconds::min()));
    gate.open();
    EXPECT_TRUE(waitUntilIdle(kelarc(), milliseconds::max()));
}

TEST_F(Idle, IsNotARequestThatTheWorkerTakesBetweenTheTwoQuestions)
{
    const support::Gate betweenRequests;
    kelarc().getArcVersion([held = std::shared_ptr<void>(
                                nullptr, [hold = betweenRequests.holder()](void*) { hold(); })](int, std::string&&) {});
    ASSERT_TRUE(betweenRequests.waitUntilEntered());
    const support::Gate inRequest;
    kelarc().getArcVersion([held = inRequest.holder()](int, std::string&&) { held(); });
    EXPECT_EQ(kelarc().getPendingTasks(), 1U);
    EXPECT_EQ(kelarc().getRunningTaskId(), 0U);
    g_afterTheFirstQuestion = [&] {
        betweenRequests.open();
        EXPECT_TRUE(inRequest.waitUntilEntered());
    };
    EXPECT_FALSE(isIdle(kelarc()));
    betweenRequests.open();
    EXPECT_TRUE(inRequest.waitUntilEntered());
    EXPECT_FALSE(isIdle(kelarc()));
}

TEST_F(Idle, IsNeverARequestThatHasNotBeenAnswered)
{
    unsigned idleButUnanswered = 0;
    for (int round = 0; round < 3000; ++round) {
        std::atomic<bool> isAnswered{false};
        kelarc().getArcVersion([&](int, std::string&&) { isAnswered = true; });
        while (!isIdle(kelarc())) {
        }
        if (!isAnswered) {
            ++idleButUnanswered;
            settle();
        }
    }
    EXPECT_EQ(idleButUnanswered, 0U);
}

}  // namespace
