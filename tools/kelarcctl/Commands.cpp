#include "kelarcctl/Commands.h"

#include "kelarcctl/Texts.h"
#include "kelarcctl/monitor/MonitorCommand.h"

namespace kelarcctl {

void addCommands(CLI::App& app, Invocation& invocation)
{
    app.ignore_case();  // inherited by all commands
    app.require_subcommand(1);
    app.set_version_flag("--version", "kelarcctl 0.1");
    app.footer(support::helpTable("Exit codes", exitCodeRows()));
    addInformation(app, invocation);
    addDoctor(app, invocation);
    addMonitor(app, invocation);
    addSettings(app, invocation);
    addKeys(app, invocation);
    addFiles(app, invocation);
    addGnss(app, invocation);
    addLsta(app, invocation);
    addEvents(app, invocation);
    addPassThrough(app, invocation);
    addTasks(app, invocation);
    addTexts(app, invocation);
}

}  // namespace kelarcctl
