#pragma once

namespace navigator {

constexpr int kExitOk = 0;
constexpr int kExitRefused = 1;  ///< the modem refused a request
constexpr int kExitUsage = 2;
constexpr int kExitDevice = 3;         ///< the receiver's output could not be read, or ended
constexpr int kExitDeadline = 4;       ///< a request had no answer in time
constexpr int kExitOutput = 5;         ///< results or log could not be written
constexpr int kExitInterrupted = 130;  ///< by a signal, before there was output or without an orderly end

}  // namespace navigator
