#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace kelarcctl {

/// Where the library's log lines go: never to stdout, which carries results only. Remembers what the last result lines
/// said, so that a refusal can be shown with its text. All functions may be called from any thread.
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
    /// "TEXT (CODE)" as a result line with this code has had it; "result code CODE" when there was none.
    std::string textOf(int code);

    /// What a call of the client library ended with.
    struct Result
    {
        int code;
        std::string text;  ///< "TEXT (CODE)"
    };
    std::optional<Result> lastResult();

private:
    void remember(const std::string& result);

    int m_file = -1;  ///< of its own
    std::atomic<bool> m_hasLost{false};
    std::function<void(int, const char*)> m_write{};
    std::mutex m_mutex;
    std::map<int, std::string> m_texts;  ///< by code
    std::optional<Result> m_lastResult;
};

}  // namespace kelarcctl
