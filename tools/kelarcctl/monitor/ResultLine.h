#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelarcctl {

/// What the library logs about one attempt: "...: [15] ARC_Open() took 12 ms: TEXT (0)".
struct ResultLine
{
    int retriesLeft = 0;  ///< -1: repeated without limit
    std::string call{};
    long long tookMs = 0;
    std::string text{};
    int code = 0;
};

/// Empty for another kind of line.
std::optional<ResultLine> resultLineOf(std::string_view logLine);

/// The names of the requests that wait, from KelArc::tasksToString().
std::vector<std::string> queuedTasksOf(const std::string& tasks);

/// How often the request that runs has been attempted, as far as the log tells.
class Attempts
{
public:
    void add(const ResultLine& line);
    /// For the running task's name, "kelarc/KelArc.526: ARC_StartGNSSraw()": attempts that have failed so far.
    int failedOf(const std::string& runningTask) const;
    /// The failures in a row of the request that was attempted last.
    int failed() const { return m_failed; }
    /// The last of them; meaningless without one.
    const ResultLine& last() const { return m_last; }

private:
    ResultLine m_last{};
    int m_failed = 0;
};

}  // namespace kelarcctl
