// Reads settings of the modem's receiver in a coroutine. C++20. Handles no signals; first_program.cpp gives the reason.

#include "kelarc/KelArc.h"
#include "kelarc/async.h"
#include "kelarc/logsink.h"

#include <coroutine>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <future>

namespace {

using kelarc::KelArc;
namespace async = kelarc::async;

/// A coroutine that begins at once and passes its exit code, or its exception, to a future.
struct Program
{
    struct promise_type
    {
        Program get_return_object() { return {exitCode.get_future()}; }
        std::suspend_never initial_suspend() { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_value(int code) { exitCode.set_value(code); }
        void unhandled_exception() { exitCode.set_exception(std::current_exception()); }

        std::promise<int> exitCode;
    };
    std::future<int> exitCode;
};

Program showSettings(KelArc& modem, async::Timer::Limit soon)
{
    if (co_await async::answer(modem, soon, &KelArc::open) != 0)
        co_return EXIT_FAILURE;
    const auto [elevationCode, degrees] = co_await async::answer(modem, soon, &KelArc::getMinElevation);
    const auto [formatCode, format] = co_await async::answer(modem, soon, &KelArc::getGnssFormat);
    co_await async::answer(modem, soon, &KelArc::close);
    if (elevationCode != 0 || formatCode != 0)
        co_return EXIT_FAILURE;  // the log says which, and why
    std::printf("Satellites below %d degrees are not used; the output is %s.\n", degrees,
                format == kelarc::gnss::FORMAT::NMEA ? "NMEA" : "raw");
    co_return EXIT_SUCCESS;
}

}  // namespace

int main()
{
    async::Timer timer;  // before the modem, so that it is destroyed after it; the coroutine runs on its thread
    KelArc modem(kelarc::logsink::toStderr());
    try {
        return showSettings(modem, timer.within(std::chrono::seconds(20))).exitCode.get();
    } catch (const async::TimedOut& late) {
        std::fprintf(stderr, "%s\n", late.what());
    } catch (const std::future_error&) {
        std::fprintf(stderr, "The library dropped a request.\n");
    }
    // Not return: the destructor would wait for a request that may be repeated for ever.
    std::_Exit(EXIT_FAILURE);
}
