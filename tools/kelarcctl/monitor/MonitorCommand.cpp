#include "kelarcctl/monitor/MonitorCommand.h"

#include "kelarcctl/monitor/KeyRows.h"
#include "kelarcctl/monitor/Monitor.h"

#include <memory>

namespace kelarcctl {

void addMonitor(CLI::App& app, Invocation& invocation)
{
    CLI::App& command = addCommand(app, "monitor", "Watch receiver, settings, LSTA, requests and events", invocation);
    const auto options = std::make_shared<MonitorOptions>();
    addTime(command, "--for", "End after this time; else Ctrl-C or q ends it",
            [options](std::chrono::milliseconds time) { options->duration = time; });
    command.add_flag("--no-color", options->noColour, "Without colours, as with NO_COLOR");
    command.footer(support::helpTable("Keys", keyRows()));
    command.callback([&invocation, options] {
        invocation.program = [&invocation, options] { return runMonitor(*options, invocation); };
    });
}

}  // namespace kelarcctl
