#include "runner/Environment.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <gnu/libc-version.h>
#include <sys/utsname.h>
#include <thread>

namespace bench {
namespace {

/// The text after the colon of the first line that begins so; empty if there is none.
std::string fileEntry(const char* path, const std::string& begin)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.compare(0, begin.size(), begin) == 0)
            return line.substr(line.find(':') + 2);
    return "";
}

std::string quotedEntry(const char* path, const std::string& begin)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.compare(0, begin.size(), begin) == 0)
            return line.substr(begin.size() + 1, line.size() - begin.size() - 2);
    return "";
}

std::string today()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", std::gmtime(&now));
    return text;
}

std::string loadBefore()
{
    double load = 0;
    return getloadavg(&load, 1) == 1 ? shown(load, 2) : "unknown";
}

}  // namespace

Table environment()
{
    utsname kernel{};
    uname(&kernel);
    const std::pair<const char*, std::string> facts[] = {
        {"date", today()},
        {"processor", fileEntry("/proc/cpuinfo", "model name") + ", " +
                          std::to_string(std::thread::hardware_concurrency()) + " of them, " + kernel.machine},
        {"load before", loadBefore()},
        {"system", quotedEntry("/etc/os-release", "PRETTY_NAME=") + ", Linux " + kernel.release},
        {"compiler", std::string(__VERSION__) + ", C library " + gnu_get_libc_version()},
    };
    Table table{"Environment", "", {""}, {}};
    for (const auto& [name, value] : facts)
        table.rows.push_back({name, {value}, {{"value", value}}});
    return table;
}

}  // namespace bench
