#include "kelarc/async.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
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
    std::shared_ptr<Clock> clock = std::make_shared<Clock>();
    std::vector<std::string> journal;
    std::shared_ptr<Ending> ending = std::make_shared<WrittenEnding>(journal);
};

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
    ending->limit(clock, std::chrono::milliseconds(50));  // by then the thread waits for the other
    while (clock->pending() != 1)
        std::this_thread::yield();
    clock->stop();
    thread.join();
    EXPECT_THAT(journal, ElementsAre("late"));
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
