// The library as a shell command. Opens the modem, makes one or a few requests, and closes the modem. A run never
// leaves the modem open and never takes longer than its --timeout plus a few seconds for closing.

#include "kelarcctl/Commands.h"
#include "kelarcctl/Ending.h"
#include "kelarcctl/ExitCode.h"

#include "support/StandardDescriptors.h"

#include <csignal>
#include <cstdio>
#include <memory>

namespace kelarcctl {

namespace {

int run(const Invocation& invocation)
{
    support::Interrupt interrupt;
    const auto log = std::make_shared<Log>(invocation.log, invocation.logLevel);
    auto modem = std::make_unique<kelarc::KelArc>([log](int level, const char* text) { log->line(level, text); });
    interrupt.allow();
    Session session(*modem, interrupt, *log, invocation.timeout);
    int exitCode = kExitOk;
    try {
        if (invocation.isOpened)
            session.open();
        exitCode = invocation.run(session, Output(invocation.json));
    } catch (const std::exception& error) {  // here: the library must not be destroyed while it repeats for ever
        exitCode = report(error, Output(invocation.json));
    }
    return endRun(session, *log, exitCode, Output(invocation.json));
}

}  // namespace

}  // namespace kelarcctl

int main(int argc, char** argv)
{
    using namespace kelarcctl;
    support::fillStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);  // a reader of stdout that leaves must not prevent closing the modem
    Program program;
    try {
        const auto exitCode = parse(program.app, {argv + 1, argv + argc});
        if (exitCode)
            return endOutput(*exitCode);
        return program.invocation.program ? program.invocation.program() : run(program.invocation);
    } catch (const std::exception& error) {
        return report(error, Output(program.invocation.json));
    }
}
