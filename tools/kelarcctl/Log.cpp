#include "kelarcctl/Log.h"

#include "kelarc/logsink.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

namespace {

constexpr char kBeforeResult[] = " ms: ";  // "... took 12 ms: TEXT (CODE)"

}  // namespace

Log::Log(const std::string& target, int lowestLevel)
{
    using namespace kelarc::logsink;
    if (target == "journal") {
        m_write = toJournal("kelarcctl", lowestLevel, toSyslog());
    } else if (target == "stderr") {
        m_write = toStderr(lowestLevel);
    } else {
        m_file = ::open(target.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (m_file < 0)
            throw std::system_error(errno, std::generic_category(), "--log: " + target);
        m_write = toDescriptor(m_file, lowestLevel);
    }
}

Log::~Log()
{
    if (m_file >= 0)
        ::close(m_file);
}

void Log::line(int level, const char* text)
{
    const std::string whole(text);
    if (const std::size_t at = whole.rfind(kBeforeResult); at != std::string::npos && whole.back() == ')') {
        const std::lock_guard<std::mutex> lock(m_mutex);
        remember(whole.substr(at + sizeof kBeforeResult - 1));
    }
    m_write(level, text);
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
