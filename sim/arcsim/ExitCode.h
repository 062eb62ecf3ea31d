#pragma once

namespace arcsim::program {

constexpr int kExitOk = 0;
constexpr int kExitOutput = 1;  ///< the results could not be written to standard output
constexpr int kExitUsage = 2;
constexpr int kExitRefused = 3;   ///< the daemon refused
constexpr int kExitNoAnswer = 4;  ///< the daemon did not answer in time
constexpr int kExitNoDaemon = 5;  ///< nothing listens at the socket, or a program that is not the daemon

constexpr int kExitDifferent = 6;  ///< the application's calls differed from the recording

}  // namespace arcsim::program
