#include "kelarc/async.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using kelarc::async::detail::Clock;
using kelarc::async::detail::Ending;
using kelarc::async::detail::Failure;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Writes down how it ends.
class WrittenEnding : public Ending
{
public:
    explicit WrittenEnding(std::vector<std::string>& journal) : m_journal(&journal) {}

private:
    void tellFailure(Failure failure) override { m_journal->push_back(failure == Failure::late ? "late" : "dropped"); }

    std::vector<std::string>* m_journal;
};

/// What a Timer's thread does, on the test's own.
class AClock : public ::testing::Test
{
protected:
    /// Until the thread that runs the clock waits for something to do. Fails the test when that takes 30 s.
    void waitUntilItSleeps()
    {
        std::promise<int> promise;
        clock->post([&promise] { promise.set_value(static_cast<int>(::syscall(SYS_gettid))); });
        std::future<int> running = promise.get_future();
        ASSERT_EQ(running.wait_for(std::chrono::seconds(30)), std::future_status::ready);
        const std::string path = "/proc/self/task/" + std::to_string(running.get()) + "/stat";
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        // From now on it sleeps nowhere else: nobody holds the clock's lock.
        for (std::string stat; stat.find(") S ") == std::string::npos;) {
            ASSERT_LT(std::chrono::steady_clock::now(), end);
            std::getline(std::ifstream(path), stat);
        }
    }

    std::shared_ptr<Clock> clock = std::make_shared<Clock>();
    std::vector<std::string> journal;
    std::shared_ptr<Ending> ending = std::make_shared<WrittenEnding>(journal);
};

TEST(ALimitInMilliseconds, EndsAtOnceWhenItIsNothingOrLess)
{
    using kelarc::async::detail::endOf;
    for (int i = 0; i < 100; ++i) {
        const auto none = endOf(std::chrono::milliseconds(0));
        const auto less = endOf(std::chrono::milliseconds(-5));
        EXPECT_LE(none, std::chrono::steady_clock::now());
        EXPECT_LE(less, std::chrono::steady_clock::now());
    }
}

TEST(ALimitInMilliseconds, EndsWithTheClockWhenItIsLonger)
{
    using kelarc::async::detail::endOf;
    using TimePoint = std::chrono::steady_clock::time_point;
    EXPECT_EQ(endOf(std::chrono::milliseconds::max()), TimePoint::max());
    const auto before = std::chrono::steady_clock::now();
    const TimePoint end = endOf(std::chrono::hours(1));
    EXPECT_GE(end, before + std::chrono::hours(1));
    EXPECT_LE(end, std::chrono::steady_clock::now() + std::chrono::hours(1));
}

TEST(AWait, TakesADayAtTheLongest)
{
    using kelarc::async::detail::untilEnd;
    EXPECT_EQ(untilEnd(std::chrono::steady_clock::time_point::max()), std::chrono::hours(24));
    EXPECT_EQ(untilEnd(std::chrono::steady_clock::now() + std::chrono::hours(25)), std::chrono::hours(24));
    EXPECT_LE(untilEnd(std::chrono::steady_clock::now()), std::chrono::nanoseconds(0));
}

TEST_F(AClock, DoesWhatWasPostedBeforeItWasStopped)
{
    clock->post([this] {
        journal.push_back("first");
        clock->post([this] { journal.push_back("never"); });
    });
    clock->post([this] { journal.push_back("second"); });
    clock->stop();
    clock->run();
    EXPECT_THAT(journal, ElementsAre("first", "second"));
    EXPECT_FALSE(clock->post([this] { journal.push_back("too late"); }));
}

TEST_F(AClock, EndsNothingOnceItWasStopped)
{
    ending->limit(clock, std::chrono::milliseconds(-1));
    clock->post([this] { journal.push_back("posted before"); });
    clock->stop();
    clock->run();
    EXPECT_THAT(journal, ElementsAre("posted before"));
}

TEST_F(AClock, EndsWhatIsLateAndForgetsIt)
{
    ending->limit(clock, std::chrono::milliseconds(-1));
    std::thread thread([this] { clock->run(); });
    while (clock->pending() != 0)
        std::this_thread::yield();
    clock->stop();
    thread.join();
    EXPECT_THAT(journal, ElementsAre("late"));
    ending->fail(Failure::dropped);
    EXPECT_THAT(journal, ElementsAre("late"));  // it ends once
}

TEST_F(AClock, WakesForADeadlineBeforeTheOneItWaitsFor)
{
    const auto later = std::make_shared<WrittenEnding>(journal);
    later->limit(clock, std::chrono::hours(1));
    std::thread thread([this] { clock->run(); });
    waitUntilItSleeps();
    ending->limit(clock, std::chrono::milliseconds(1));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (clock->pending() != 1 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_EQ(clock->pending(), 1U);
    clock->stop();
    thread.join();
    EXPECT_THAT(journal, ElementsAre("late"));
}

TEST_F(AClock, WakesForWorkAndForTheEnd)
{
    std::thread thread([this] { clock->run(); });
    waitUntilItSleeps();
    waitUntilItSleeps();  // was woken by the work of the first
    clock->stop();
    thread.join();
}

TEST_F(AClock, ForgetsADeadlineOfWhatIsGone)
{
    ending->limit(clock, std::chrono::milliseconds(-1));
    ending.reset();
    std::thread thread([this] { clock->run(); });
    while (clock->pending() != 0)
        std::this_thread::yield();
    clock->stop();
    thread.join();
    EXPECT_THAT(journal, IsEmpty());
}

}  // namespace
