#include "arcsim/RunWith.h"

#include "arcsim/ChildProcess.h"

#include <asio/signal_set.hpp>

#include <csignal>
#include <functional>
#include <optional>
#include <sys/wait.h>

namespace arcsim::program {

int runWith(asio::io_context& context, EndSignals& signals, const std::string& socketPath,
            const std::vector<std::string>& command)
{
    asio::signal_set ends(context, SIGCHLD);  // before the child starts, so that its end is not missed
    const pid_t process = startProcess(
        command, {{"ARCSIM_SOCKET", socketPath}, {"ARCSIM_SCENARIO", ""}, {"ARCSIM_REPLAY", ""}, {"ARCSIM_TIME", ""}});
    signals.handle([process](int number) {
        if (number != SIGINT && number != SIGQUIT)  // a terminal sends these two to the command as well
            ::kill(process, number);
    });
    std::optional<int> exitCode;
    std::function<void(const asio::error_code&, int)> onEnd = [&](const asio::error_code& error, int) {
        if (error)
            return;
        int status = 0;
        if (::waitpid(process, &status, WNOHANG) == process) {
            exitCode = exitCodeOf(status);
            context.stop();
            return;
        }
        ends.async_wait(onEnd);
    };
    ends.async_wait(onEnd);
    while (!exitCode) {
        context.restart();
        context.run();
    }
    return *exitCode;
}

}  // namespace arcsim::program
