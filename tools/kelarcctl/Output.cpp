#include "kelarcctl/Output.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace kelarcctl {

void Output::result(const Json& json, const std::string& text) const
{
    // What the modem says need not be UTF-8.
    const std::string line = m_isJson ? json.dump(-1, ' ', true, Json::error_handler_t::replace) : text;
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
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
