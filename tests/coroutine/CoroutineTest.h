#pragma once

#include "async/Outcome.h"
#include "coroutine/Job.h"
#include "support/KelArcTest.h"

#include <exception>
#include <optional>
#include <string>

inline constexpr std::chrono::minutes kLong{30};

/// Awaits, then journals how it ended, as an event: the thread of the event is the one where the coroutine went on.
template <typename MakeAwaitable>
Job journalOutcome(support::Journal& journal, MakeAwaitable make)
{
    std::string text;
    try {
        text = outcome::textOf(co_await make());
    } catch (...) {
        text = outcome::of([error = std::current_exception()]() -> int { std::rethrow_exception(error); });
    }
    journal.add(support::Kind::event, text);
}

/// Coroutines on an object on the simulated modem.
class CoroutineTest : public support::KelArcTest
{
protected:
    ~CoroutineTest() override { destroy(); }  // before the timer

    template <typename MakeAwaitable>
    void start(MakeAwaitable make)
    {
        journalOutcome(journal, make);
    }

    /// Requests of which only the queue knows.
    void fillQueue(unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            kelarc().getArcVersion([](int, std::string&&) {});
        ASSERT_EQ(kelarc().getPendingTasks(), count);
    }

    std::thread::id threadOfEvent(std::size_t number)
    {
        return journal.entries(support::Kind::event).at(number).thread;
    }

    std::optional<kelarc::async::Timer> timer{std::in_place};
};
