#include "kelarcctl/Ending.h"

#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Output.h"
#include "kelarcctl/Trouble.h"

#include <cstdio>
#include <unistd.h>

namespace kelarcctl {

namespace {

/// Only what makes a command fail that would have succeeded is its error.
void complain(int& exitCode, int code, const Trouble& trouble, const Output& output)
{
    if (exitCode == kExitOk)
        exitCode = report(TroubleFailure(code, trouble), output);
    else
        std::fprintf(stderr, "%s\n", trouble.shown().c_str());
}

Trouble failed(const std::string& text)
{
    Trouble trouble;
    trouble.text = text;
    return trouble;
}

}  // namespace

int endOutput(int exitCode)
{
    if (!Output::finish())  // nor could an error
        complain(exitCode, kExitRefused, failed("the results could not be written"), Output(false));
    return exitCode;
}

int endRun(Session& session, const Log& log, int exitCode, const Output& output)
{
    const bool isClosed = session.close();
    if (!isClosed && session.modem().isOpen() && exitCode != kExitDeadline)  // then it is known what hangs
        complain(exitCode, kExitDeadline,
                 failed("the modem was not closed within 3 s; running: " + session.modem().getRunningTaskName()),
                 output);
    exitCode = endOutput(exitCode);
    if (log.hasLost())
        complain(exitCode, kExitRefused, failed("the log could not be written"), output);
    if (!isClosed) {
        std::fflush(nullptr);
        ::_exit(exitCode);
    }
    return exitCode;
}

}  // namespace kelarcctl
