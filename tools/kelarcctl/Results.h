#pragma once

#include "kelarcctl/monitor/ResultLine.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace kelarcctl {

/// The attempts at calls, collected from the library's log. All functions may be called from any thread.
class Results
{
public:
    using Clock = std::chrono::steady_clock;

    void add(std::string_view logLine);

    /// An answer, and the number of failures in a row up to it.
    struct Answer
    {
        ResultLine line{};
        int attempts = 0;
        Clock::time_point when{};
    };
    /// The last answer with this code.
    std::optional<Answer> last(int code) const;
    /// The last answer of any code, with the failures so far of the running task, given by its name.
    std::optional<Answer> lastWhile(const std::string& runningTask) const;

private:
    mutable std::mutex m_mutex;
    Attempts m_attempts;  ///< guarded by m_mutex, as all below
    std::optional<Answer> m_last;
    std::map<int, Answer> m_byCode;
};

/// "TEXT (CODE)"
std::string textAndCode(const ResultLine& line);

}  // namespace kelarcctl
