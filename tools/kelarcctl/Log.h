#pragma once

#include "kelarcctl/Results.h"

#include <atomic>
#include <functional>
#include <string>

namespace kelarcctl {

/// Writes the library's log lines, never to stdout, which carries results only. Remembers the content of the last
/// result lines. All functions may be called from any thread.
class Log
{
public:
    /// `target` is "stderr", "journal" (syslog if there is no journal) or the path of a file to append to. Lines below
    /// `lowestLevel` (2 to 5) are left out. Throws std::system_error if the file cannot be opened, or if there is
    /// neither a journal nor syslog.
    Log(const std::string& target, int lowestLevel);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void line(int level, const char* text);
    /// Whether a line could not be written.
    bool hasLost() const { return m_hasLost; }
    /// The results found in the lines so far.
    const Results& results() const { return m_results; }

private:
    int m_file = -1;  ///< the log file; -1: none
    std::atomic<bool> m_hasLost{false};
    std::function<void(int, const char*)> m_write{};
    Results m_results{};
};

}  // namespace kelarcctl
