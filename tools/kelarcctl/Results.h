#pragma once

#include "kelarcctl/monitor/ResultLine.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace kelarcctl {

/// What the library's log has told about attempts at calls. All functions may be called from any thread.
class Results
{
public:
    using Clock = std::chrono::steady_clock;

    void add(std::string_view logLine);

    /// An answer, and how often in a row it or another failure was given.
    struct Answer
    {
        ResultLine line{};
        int attempts = 0;
        Clock::time_point when{};
    };
    /// The last answer with this code.
    std::optional<Answer> last(int code) const;
    /// The last answer of all, with the failures so far of the task that runs, by its name.
    std::optional<Answer> lastWhile(const std::string& runningTask) const;

private:
    mutable std::mutex m_mutex;
    Attempts m_attempts;  ///< this and what follows are guarded by m_mutex
    std::optional<Answer> m_last;
    std::map<int, Answer> m_byCode;
};

/// "TEXT (CODE)"
std::string textAndCode(const ResultLine& line);

}  // namespace kelarcctl
