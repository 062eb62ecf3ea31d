#include "kelarcctl/Log.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <syslog.h>
#include <system_error>

namespace kelarcctl {

namespace {

constexpr char kBeforeResult[] = " ms: ";  // "... took 12 ms: TEXT (CODE)"

int priorityOf(int level)
{
    switch (level) {
    case 2:
        return LOG_INFO;
    case 3:
        return LOG_NOTICE;
    case 4:
        return LOG_WARNING;
    default:
        return LOG_ERR;
    }
}

}  // namespace

Log::Log(const std::string& target, int lowestLevel) : m_lowestLevel(lowestLevel)
{
    if (target == "journal") {
        ::openlog("kelarcctl", LOG_PID, LOG_USER);
    } else if (target == "stderr") {
        m_file = stderr;
    } else {
        m_file = std::fopen(target.c_str(), "ae");
        if (m_file == nullptr)
            throw std::system_error(errno, std::generic_category(), "--log: " + target);
        std::setvbuf(m_file, nullptr, _IOLBF, BUFSIZ);
    }
}

Log::~Log()
{
    if (m_file == nullptr)
        ::closelog();
    else if (m_file != stderr)
        std::fclose(m_file);
}

void Log::line(int level, const char* text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::string whole(text);
    if (const std::size_t at = whole.rfind(kBeforeResult); at != std::string::npos && whole.back() == ')')
        m_lastResult = whole.substr(at + sizeof kBeforeResult - 1);
    if (level < m_lowestLevel)
        return;
    if (m_file == nullptr) {
        ::syslog(priorityOf(level), "%d %s", level, text);
        return;
    }
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    char time[32];
    std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%S", &utc);
    std::fprintf(m_file, "%s.%03dZ %d %s\n", time, static_cast<int>(sinceEpoch.count() % 1000), level, text);
}

std::string Log::textOf(int code)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::string ending = " (" + std::to_string(code) + ")";
    const bool isIts = m_lastResult.size() > ending.size() &&
                       m_lastResult.compare(m_lastResult.size() - ending.size(), ending.size(), ending) == 0;
    return isIts ? m_lastResult : "result code " + std::to_string(code);
}

}  // namespace kelarcctl
