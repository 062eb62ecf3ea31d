#pragma once

namespace arcsim::program {

constexpr int kExitOk = 0;
constexpr int kExitOutput = 1;  ///< what was to be said could not be written to standard output
constexpr int kExitUsage = 2;
constexpr int kExitRefused = 3;   ///< the daemon refused
constexpr int kExitNoAnswer = 4;  ///< there is a daemon, but it did not answer in time
constexpr int kExitNoDaemon = 5;  ///< nobody listens at the socket, or something that is no daemon

constexpr int kExitDifferent = 6;  ///< an application did not call as it was recorded

}  // namespace arcsim::program
