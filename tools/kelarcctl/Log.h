#pragma once

#include "kelarcctl/Results.h"

#include <atomic>
#include <functional>
#include <string>

namespace kelarcctl {

/// Where the library's log lines go: never to stdout, which carries results only. Remembers what the last result lines
/// said. All functions may be called from any thread.
class Log
{
public:
    /// `target` is "stderr", "journal" (or syslog, where there is none) or the path of a file, to which lines are
    /// appended. Lines below `lowestLevel` (2 to 5) are left out. Throws std::system_error for a file that cannot be
    /// opened, and where there is neither a journal nor syslog.
    Log(const std::string& target, int lowestLevel);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void line(int level, const char* text);
    /// A line could not be written.
    bool hasLost() const { return m_hasLost; }
    /// What the lines have told so far.
    const Results& results() const { return m_results; }

private:
    int m_file = -1;  ///< of its own
    std::atomic<bool> m_hasLost{false};
    std::function<void(int, const char*)> m_write{};
    Results m_results{};
};

}  // namespace kelarcctl
