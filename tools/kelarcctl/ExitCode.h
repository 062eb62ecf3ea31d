#pragma once

namespace kelarcctl {

// Scripts rely on these.
constexpr int kExitOk = 0;
constexpr int kExitUsage = 2;          ///< the command line was not understood
constexpr int kExitRefused = 3;        ///< the modem refused; its code and text are on stderr
constexpr int kExitDeadline = 4;       ///< no answer within --timeout
constexpr int kExitInterrupted = 130;  ///< by a signal

}  // namespace kelarcctl
