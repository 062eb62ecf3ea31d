#pragma once

namespace kelarcctl {

// Scripts rely on these.
constexpr int kExitOk = 0;
constexpr int kExitUsage = 2;
constexpr int kExitRefused = 3;
constexpr int kExitDeadline = 4;
constexpr int kExitInterrupted = 130;

struct ExitCodeRow
{
    int code;
    const char* meaning;
};
inline constexpr ExitCodeRow kExitCodes[] = {
    {kExitOk, "success"},
    {kExitUsage, "the command line, or a file of settings, was not understood"},
    {kExitRefused,
     "the modem refused: its code and text are on standard error; doctor found what has failed; results or log could "
     "not be written"},
    {kExitDeadline, "no success within --timeout, or the modem was not closed within 3 s; what it answers or where it "
                    "hangs is on standard error"},
    {kExitInterrupted, "interrupted by a signal"},
};

}  // namespace kelarcctl
