#pragma once

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>

#include <csignal>
#include <functional>

namespace arcsim::program {

/// The signals that would end this program before it could tidy up: all that there are, apart from those that cannot be
/// caught, those that stand for a fault of its own, and those that it was started to ignore (as with nohup).
class EndSignals
{
public:
    /// From now on none of them ends the program.
    explicit EndSignals(asio::io_context& context) : m_signals(context)
    {
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM, SIGUSR1, SIGUSR2, SIGVTALRM,
                                 SIGPROF, SIGXCPU, SIGXFSZ, SIGPOLL, SIGPWR, SIGSTKFLT})
            add(number);
        for (int number = SIGRTMIN; number <= SIGRTMAX; ++number)
            add(number);
    }

    /// Calls `action` with the number of each that comes, also of those that came before. Once; outlives the run of the
    /// context. A reader of our output that has gone is no reason to end: writing fails, and that is told.
    void handle(std::function<void(int number)> action)
    {
        m_action = std::move(action);
        wait();
    }

private:
    void add(int number)
    {
        struct sigaction present = {};
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
            m_signals.add(number);
    }
    void wait()
    {
        m_signals.async_wait([this](const asio::error_code& error, int number) {
            if (error)
                return;
            if (number != SIGPIPE)
                m_action(number);
            wait();
        });
    }

    asio::signal_set m_signals;
    std::function<void(int number)> m_action{};
};

}  // namespace arcsim::program
