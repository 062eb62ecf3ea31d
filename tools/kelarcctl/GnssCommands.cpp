#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Stream.h"

#include "support/Printable.h"

#include <memory>
#include <utility>

namespace kelarcctl {

namespace {

/// A request whose only answer is a code.
template <typename Request>
void addPlain(CLI::App& parent, const std::string& name, const std::string& help, const std::string& doing,
              Invocation& invocation, Request request)
{
    addCommand(parent, name, help, invocation).callback([&invocation, doing, request] {
        invocation.run = [doing, request](Session& session, const Output& output) {
            const auto [code] = session.ask<int>(
                doing, [&](auto&& callback) { request(session.modem(), std::forward<decltype(callback)>(callback)); });
            session.require(code, doing);
            output.result({{"request", doing}, {"done", true}}, "done");
            return kExitOk;
        };
    });
}

}  // namespace

void addGnss(CLI::App& app, Invocation& invocation)
{
    CLI::App& gnss = addGroup(app, "gnss", "The receiver's engine");
    CLI::App& start = addCommand(gnss, "start", "Start the raw output and say where it comes", invocation);
    const auto holds = std::make_shared<bool>(false);
    start.add_flag("--hold", *holds, "Keep the modem open until Ctrl-C; else output may end with this command");
    start.callback([&invocation, holds] {
        invocation.run = [holds](Session& session, const Output& output) {
            const auto [code, path] = session.ask<int, std::string>("starting the raw output", [&](auto&& callback) {
                session.modem().startRawGNSS(std::forward<decltype(callback)>(callback));
            });
            session.require(code, "starting the raw output");
            output.result({{"path", path}}, support::printable(path));
            return *holds ? Stream().run(session, output, {}, "the output runs") : kExitOk;
        };
    });
    using Callback = std::function<void(int)>;
    addPlain(gnss, "stop", "Stop the engine", "stopping the engine", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.stopGNSS(std::move(callback)); });
    addPlain(gnss, "force-stop", "Stop the engine by force", "stopping the engine by force", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.forceStopGNSS(std::move(callback)); });
    addPlain(gnss, "reset-assistance", "Reset the assistance data", "resetting the assistance data", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.resetAGNSS(std::move(callback)); });
}

}  // namespace kelarcctl
