#include "arcsim/RunWith.h"

#include "arcsim/ChildProcess.h"

#include <asio/signal_set.hpp>

#include <csignal>
#include <functional>
#include <optional>
#include <sys/wait.h>

namespace arcsim::program {

int runWith(asio::io_context& context, const std::string& socketPath, const std::vector<std::string>& command)
{
    // Before the start, so that no end is missed. SIGINT is watched to outlive it: the command decides what it means.
    asio::signal_set signals(context, SIGCHLD, SIGTERM, SIGINT);
    const pid_t process = startProcess(
        command, {{"ARCSIM_SOCKET", socketPath}, {"ARCSIM_SCENARIO", ""}, {"ARCSIM_REPLAY", ""}, {"ARCSIM_TIME", ""}});
    std::optional<int> exitCode;
    std::function<void(const asio::error_code&, int)> onSignal = [&](const asio::error_code& error, int number) {
        if (error)
            return;
        int status = 0;
        if (number == SIGTERM)
            ::kill(process, SIGTERM);
        if (number == SIGCHLD && ::waitpid(process, &status, WNOHANG) == process) {
            exitCode = exitCodeOf(status);
            context.stop();
            return;
        }
        signals.async_wait(onSignal);
    };
    signals.async_wait(onSignal);
    while (!exitCode) {
        context.restart();
        context.run();
    }
    return *exitCode;
}

}  // namespace arcsim::program
