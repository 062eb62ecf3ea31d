#pragma once

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>

#include <csignal>
#include <functional>

namespace arcsim::program {

/// The signals that would end this program before it could clean up: all except those that cannot be caught, those that
/// report a crash of the program itself, and those that it was started to ignore (as with nohup).
class EndSignals
{
public:
    /// From now on none of these signals ends the program.
    explicit EndSignals(asio::io_context& context) : m_signals(context)
    {
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM, SIGUSR1, SIGUSR2, SIGVTALRM,
                                 SIGPROF, SIGXCPU, SIGXFSZ, SIGPOLL, SIGPWR, SIGSTKFLT})
            add(number);
        for (int number = SIGRTMIN; number <= SIGRTMAX; ++number)
            add(number);
    }

    /// Calls `action` with the number of each signal, including those that came earlier. Call it once; the object must
    /// outlive the run of the context. SIGPIPE does not end the program: the failed write is reported.
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
