#include "arcsim/Timers.h"

#include <asio/post.hpp>
#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace {

using arcsim::Timers;
using std::chrono::milliseconds;

/// The time of everything planned comes while nobody runs the context; then what is posted goes first, and the handlers
/// of the timers are on their way behind it.
void passTime()
{
    std::this_thread::sleep_for(milliseconds(20));
}

TEST(Timers, RunWhatIsDueOnceAndInOrder)
{
    asio::io_context context(1);
    Timers timers(context);
    std::vector<int> ran;
    timers.after(milliseconds(2), [&] { ran.push_back(2); });
    timers.after(milliseconds(1), [&] { ran.push_back(1); });
    context.run();
    EXPECT_EQ(ran, (std::vector{1, 2}));
    EXPECT_EQ(timers.waiting(), 0U);
}

TEST(Timers, DoNotRunWhatIsCancelledAfterItsTimeHasCome)
{
    asio::io_context context(1);
    Timers timers(context);
    bool ran = false;
    Timers::Number late = 0;
    timers.after(milliseconds(1), [&] { timers.cancel(late); });
    late = timers.after(milliseconds(2), [&] { ran = true; });
    passTime();
    context.run();
    EXPECT_FALSE(ran);
    EXPECT_EQ(timers.waiting(), 0U);
}

TEST(Timers, DoNotRunWhatOutlivesThem)
{
    asio::io_context context(1);
    std::optional<Timers> timers(context);
    bool ran = false;
    timers->after(milliseconds(1), [&] { timers.reset(); });
    timers->after(milliseconds(2), [&] { ran = true; });
    passTime();
    context.run();
    EXPECT_FALSE(ran);
    EXPECT_FALSE(timers);
}

TEST(Timers, NeverUseANumberTwice)
{
    asio::io_context context(1);
    Timers timers(context);
    const Timers::Number first = timers.after(milliseconds(0), [] {});
    context.run();
    bool ran = false;
    const Timers::Number second = timers.after(milliseconds(0), [&] { ran = true; });
    timers.cancel(first);
    context.restart();
    context.run();
    EXPECT_NE(first, second);
    EXPECT_NE(first, 0U);
    EXPECT_TRUE(ran);
}

}  // namespace
