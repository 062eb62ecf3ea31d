#include "kelarcctl/Output.h"

#include "support/Printable.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <sstream>

namespace kelarcctl {

namespace {

std::string lineOf(const Json& json)
{
    Json line{{"utc", utcText()}};
    line.update(json);
    // The modem's texts need not be UTF-8.
    return line.dump(-1, ' ', true, Json::error_handler_t::replace);
}

/// The modem's texts must not control a terminal, not even behind a pipe.
std::string withoutControls(const std::string& text)
{
    std::string shown;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        shown += support::printable(line) + "\n";
    return text.empty() ? "\n" : shown;
}

}  // namespace

void Output::result(const Json& json, const std::string& text) const
{
    std::fputs((m_isJson ? lineOf(json) + "\n" : withoutControls(text)).c_str(), stdout);
    std::fflush(stdout);
}

void Output::text(const std::string& text) const
{
    if (!m_isJson)
        result({}, text);
}

bool Output::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

std::string utcText()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    char time[40];
    const std::size_t length = std::strftime(time, sizeof time, "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(time + length, sizeof time - length, ".%03dZ", static_cast<int>(sinceEpoch.count() % 1000));
    return time;
}

}  // namespace kelarcctl
