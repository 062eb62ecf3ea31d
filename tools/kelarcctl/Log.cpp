#include "kelarcctl/Log.h"

#include "kelarcctl/Output.h"

#include <cerrno>
#include <cstdlib>
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
        remember(whole.substr(at + sizeof kBeforeResult - 1));
    if (level < m_lowestLevel)
        return;
    if (m_file == nullptr) {
        ::syslog(priorityOf(level), "%d %s", level, text);
        return;
    }
    std::fprintf(m_file, "%s %d %s\n", utcText().c_str(), level, text);
}

void Log::remember(const std::string& result)
{
    const int code = std::atoi(result.c_str() + result.rfind('(') + 1);
    m_lastResult = {code, result};
    m_texts[code] = result;
}

std::string Log::textOf(int code)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto known = m_texts.find(code);
    return known == m_texts.end() ? "result code " + std::to_string(code) : known->second;
}

std::optional<Log::Result> Log::lastResult()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastResult;
}

}  // namespace kelarcctl
