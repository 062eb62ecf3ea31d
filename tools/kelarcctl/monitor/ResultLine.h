#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelarcctl {

/// The library's log line about one attempt: "...: [15] ARC_Open() took 12 ms: TEXT (0)".
struct ResultLine
{
    int retriesLeft = 0;  ///< -1: repeated without limit
    std::string call{};
    long long tookMs = 0;
    std::string text{};
    int code = 0;
};

/// Empty for any other line.
std::optional<ResultLine> resultLineOf(std::string_view logLine);

/// The names of the requests that wait, from KelArc::tasksToString().
std::vector<std::string> queuedTasksOf(const std::string& tasks);

/// The attempts at the running request, counted from the log.
class Attempts
{
public:
    void add(const ResultLine& line);
    /// The failed attempts of the running task with this name, "kelarc/KelArc.526: ARC_StartGNSSraw()".
    int failedOf(const std::string& runningTask) const;
    /// The failures in a row of the last attempted request.
    int failed() const { return m_failed; }
    /// The last attempt; meaningless if there was none.
    const ResultLine& last() const { return m_last; }

private:
    ResultLine m_last{};
    int m_failed = 0;
};

}  // namespace kelarcctl
