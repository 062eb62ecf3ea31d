#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace kelarcctl {

/// Where the library's log lines go: never to stdout, which carries results only. Remembers what the last result lines
/// said, so that a refusal can be shown with its text. All functions may be called from any thread.
class Log
{
public:
    /// `target` is "stderr", "journal" (the system's log) or the path of a file, to which lines are appended. Lines
    /// below `lowestLevel` (2 to 5) are left out. Throws std::system_error for a file that cannot be opened.
    Log(const std::string& target, int lowestLevel);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void line(int level, const char* text);
    /// "TEXT (CODE)" as the last result line with this code had it; "result code CODE" when there was none.
    std::string textOf(int code);

private:
    std::FILE* m_file = nullptr;  ///< null: the system's log
    const int m_lowestLevel;
    std::mutex m_mutex;
    std::string m_lastResult;
};

}  // namespace kelarcctl
