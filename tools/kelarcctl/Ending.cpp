#include "kelarcctl/Ending.h"

#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Output.h"
#include "kelarcctl/Trouble.h"

#include <cstdio>
#include <unistd.h>

namespace kelarcctl {

namespace {

/// The trouble becomes the command's error only if the command had succeeded so far.
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

Trouble notClosed(const Session& session, Session::Clock::duration since)
{
    Trouble trouble = session.hindrance("closing the modem", since);
    trouble.text = "the modem was not closed within " +
                   std::to_string(std::chrono::duration_cast<std::chrono::seconds>(Session::longestClose()).count()) +
                   " s: " + trouble.text;
    return trouble;
}

}  // namespace

int endOutput(int exitCode)
{
    if (!Output::finish())  // an error could not be written either
        complain(exitCode, kExitRefused, failed("the results could not be written"), Output(false));
    return exitCode;
}

int endRun(Session& session, const Log& log, int exitCode, const Output& output)
{
    const auto begin = Session::Clock::now();
    const Session::Closing closing = session.close();
    // A command that failed at opening, or ran out of time, has already reported what hangs.
    const bool isToldOf = exitCode == kExitDeadline || (!session.modem().isOpen() && exitCode != kExitInterrupted);
    if (closing == Session::Closing::late && !isToldOf)
        complain(exitCode, kExitDeadline, notClosed(session, Session::Clock::now() - begin), output);
    exitCode = endOutput(exitCode);
    if (log.hasLost())
        complain(exitCode, kExitRefused, failed("the log could not be written"), output);
    if (closing != Session::Closing::done) {
        std::fflush(nullptr);
        ::_exit(exitCode);
    }
    return exitCode;
}

}  // namespace kelarcctl
