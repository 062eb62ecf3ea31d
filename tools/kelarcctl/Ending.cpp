#include "kelarcctl/Ending.h"

#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Output.h"

#include <cstdio>
#include <unistd.h>

namespace kelarcctl {

namespace {

void complain(int& exitCode, int code, const std::string& text)
{
    std::fprintf(stderr, "kelarcctl: %s\n", text.c_str());
    exitCode = exitCode == kExitOk ? code : exitCode;
}

}  // namespace

int endOutput(int exitCode)
{
    if (!Output::finish())
        complain(exitCode, kExitRefused, "the results could not be written");
    return exitCode;
}

int endRun(Session& session, const Log& log, int exitCode)
{
    const bool isClosed = session.close();
    if (!isClosed && session.modem().isOpen() && exitCode != kExitDeadline)  // then it is known what hangs
        complain(exitCode, kExitDeadline,
                 "the modem was not closed within 3 s; running: " + session.modem().getRunningTaskName());
    exitCode = endOutput(exitCode);
    if (log.hasLost())
        complain(exitCode, kExitRefused, "the log could not be written");
    if (!isClosed) {
        std::fflush(nullptr);
        ::_exit(exitCode);
    }
    return exitCode;
}

}  // namespace kelarcctl
