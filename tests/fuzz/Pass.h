#pragma once

#include "sim/held_clock.h"

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

namespace fuzz {

/// Lets time pass at once and runs everything that is due then.
inline void pass(asio::io_context& context, host_test::HeldClock& clock, host_test::HeldClock::Clock::duration time)
{
    clock.pass(time);
    asio::steady_timer now(context);  // the context has asked the system when to look at its timers; this makes it look
    now.expires_at(host_test::HeldClock::Clock::now());
    bool hasLooked = false;
    now.async_wait([&](const asio::error_code&) { hasLooked = true; });
    context.restart();
    while (!hasLooked)
        context.run_one();
    context.poll();
}

}  // namespace fuzz
