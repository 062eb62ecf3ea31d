#pragma once

#include <chrono>
#include <optional>

namespace navigator {

/// The options of the command line.
struct Options
{
    std::optional<std::chrono::seconds> duration{};  ///< of the output; empty: until Ctrl-C
    std::chrono::seconds timeout{30};                ///< for the answer to one request
    int periodMs = 1000;
    int minElevationDeg = 5;
    bool glonass = true;
    bool galileo = true;
    bool beidou = true;
    bool qzss = true;
    bool sbas = true;
    bool color = false;
};

/// Reads the command line. Returns nothing, with the exit code in `exitCode`, when it asks for help or is wrong. Files
/// for the simulated modem are passed on through the environment, so call this function before anything else.
std::optional<Options> readOptions(int argc, char** argv, int& exitCode);

}  // namespace navigator
