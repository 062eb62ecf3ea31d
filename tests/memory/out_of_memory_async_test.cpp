#include "kelarc/async.h"
#include "memory/ClientLibrary.h"
#include "memory/Memory.h"

#include <gtest/gtest.h>

using kelarc::KelArc;
using kelarc::async::Timer;

namespace {

/// First in this process, so that what is made once for all requests is made here.
TEST(OutOfMemoryInARequestForAFuture, HasRequestedNothingAndLeavesNoLimitBehind)
{
    client::reset();
    Timer timer;
    KelArc modem([](int, const char*) {});
    kelarc::async::request(modem, &KelArc::open).get();
    const int callsBefore = client::calls;
    std::future<std::tuple<int, bool>> written;
    const int failures = memory::failEveryAllocation(
        [&] {
            written =
                kelarc::async::request(modem, timer.within(std::chrono::hours(1)), &KelArc::setModuleSetting,
                                       "a key of more than 15 characters", "\"a value of more than 15 characters\"");
        },
        [&] {
            EXPECT_FALSE(written.valid());
            EXPECT_EQ(timer.pending(), 0u);
            EXPECT_EQ(client::calls, callsBefore);
        });
    EXPECT_GT(failures, 5);
    EXPECT_EQ(std::get<0>(written.get()), 0);
    EXPECT_EQ(client::calls, callsBefore + 1);
}

#ifdef __cpp_impl_coroutine

/// Runs until it waits; nobody waits for it.
struct Job
{
    struct promise_type
    {
        Job get_return_object() { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };
};

Job write(KelArc& modem, const Timer& timer, std::promise<int>& answered, bool& isRefused)
{
    try {
        const auto [code, changed] = co_await kelarc::async::answer(
            modem, timer.within(std::chrono::hours(1)), &KelArc::setModuleSetting, "a key of more than 15 characters",
            "\"a value of more than 15 characters\"");
        answered.set_value(code);
    } catch (const std::bad_alloc&) {
        isRefused = true;
    }
}

TEST(OutOfMemoryInACoroutine, IsThrownIntoItHasRequestedNothingAndLeavesNoLimitBehind)
{
    client::reset();
    Timer timer;
    KelArc modem([](int, const char*) {});
    kelarc::async::request(modem, &KelArc::open).get();
    const int callsBefore = client::calls;
    std::promise<int> answered;
    int refused = 0;
    const int failures = memory::failEveryAllocation(
        [&] {
            bool isRefused = false;
            write(modem, timer, answered, isRefused);
            refused += isRefused;
            if (isRefused)
                throw std::bad_alloc();
        },
        [&] {
            EXPECT_EQ(timer.pending(), 0u);
            EXPECT_EQ(client::calls, callsBefore);
        });
    EXPECT_GT(refused, 5);
    EXPECT_EQ(failures, refused + 1) << "but for the coroutine's own memory, each failure is thrown into it";
    EXPECT_EQ(answered.get_future().get(), 0);
    EXPECT_EQ(client::calls, callsBefore + 1);
}

#endif

TEST(OutOfMemoryInATimersConstructor, IsThrownAndTheNextOneIsMade)
{
    std::unique_ptr<Timer> timer;
    const int failures =
        memory::failEveryAllocation([&] { timer = std::make_unique<Timer>(); }, [&] { EXPECT_EQ(timer, nullptr); });
    EXPECT_GT(failures, 2);
    EXPECT_EQ(timer->pending(), 0u);
}

}  // namespace
