#pragma once

#include <cstddef>

namespace kelarc {

/// Whether a task makes an attempt while the object is inactive (it answers 32 without one).
enum class Start
{
    always,
    ifActive,
};

/// Whether a task goes on after a failed attempt while the object is inactive.
enum class Retry
{
    always,
    whileActive,
};

/// Whether a task that has used up its budget says so in the log.
enum class Tell
{
    never,
    always,
    ifActive,
};

/// How one kind of task calls its ARC_* function.
struct CallPolicy
{
    unsigned taskLine;  ///< in the task's name
    int budget;         ///< counted failures until the task gives up
    Start start;
    Retry retry;
    Tell tell;
    int giveUpLevel;
    std::size_t giveUpLine;
};

constexpr int kRetries = 15;
constexpr int kUntilSuccess = -1;  ///< a budget that is printed but never counted

// Task names and log lines are read by other people's tools: levels and lines are published values (docs/contract.md),
// not positions in today's files.
// clang-format off
//                                              task  budget         start            retry               give up: tell, level, line
constexpr CallPolicy kSetNotificationMethodCall{ 118, kRetries,      Start::always,   Retry::always,      Tell::always,   4,  135 };
constexpr CallPolicy kOpenCall                 { 141, kUntilSuccess, Start::always,   Retry::always,      Tell::never,    0,    0 };
constexpr CallPolicy kCloseCall                { 183, kRetries,      Start::always,   Retry::always,      Tell::never,    0,    0 };
constexpr CallPolicy kRegisterNotificationCall { 207, kUntilSuccess, Start::always,   Retry::always,      Tell::never,    0,    0 };
constexpr CallPolicy kEnableLoggingCall        { 240, kRetries,      Start::always,   Retry::always,      Tell::ifActive, 4,  261 };
constexpr CallPolicy kGetArcVersionCall        { 270, kRetries,      Start::always,   Retry::always,      Tell::ifActive, 4,  291 };
constexpr CallPolicy kGetRilVersionCall        { 300, kRetries,      Start::always,   Retry::always,      Tell::ifActive, 4,  321 };
constexpr CallPolicy kAtcTunnelingCall         { 333, kRetries,      Start::ifActive, Retry::whileActive, Tell::ifActive, 4,  355 };
constexpr CallPolicy kGetModuleSettingCall     { 367, kRetries,      Start::ifActive, Retry::whileActive, Tell::ifActive, 4,  395 };
constexpr CallPolicy kSetModuleSettingCall     { 407, kRetries,      Start::ifActive, Retry::whileActive, Tell::ifActive, 4,  434 };
constexpr CallPolicy kStartGnssRawCall         { 526, kUntilSuccess, Start::ifActive, Retry::whileActive, Tell::never,    0,    0 };
constexpr CallPolicy kForceStopGnssCall        { 571, kUntilSuccess, Start::always,   Retry::always,      Tell::never,    0,    0 };
constexpr CallPolicy kStopGnssCall             { 601, kRetries,      Start::always,   Retry::whileActive, Tell::ifActive, 5,  625 };
constexpr CallPolicy kResetAgnssCall           { 634, kRetries,      Start::always,   Retry::always,      Tell::ifActive, 4,  653 };
constexpr CallPolicy kCurrentLstaCall          {1027, kRetries,      Start::ifActive, Retry::whileActive, Tell::ifActive, 4, 1054 };
constexpr CallPolicy kEnableLstaCall           {1136, kRetries,      Start::ifActive, Retry::whileActive, Tell::ifActive, 4, 1157 };
// clang-format on

}  // namespace kelarc
