// Runs the receiver for a test and does as the test says, on the library's public header alone.
//
//     receiver_host [NAME VALUE]...      settings for the start, for example: period 200 glonass off
//
// Opens the connection, makes the settings, starts the raw output and prints the path of its device. Then every line on
// stdin is a command, NAME VALUE as above or start, stop, quit, and is answered by the line "ok" or "code N". The end
// of stdin ends it too. No answer of the modem within a minute ends it with exit code 3.

#include "kelarc/KelArc.h"
#include "support/Await.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace {

using namespace kelarc;

constexpr int kRefused = 1;
constexpr int kMisused = 2;
constexpr int kUnanswered = 3;
constexpr std::chrono::minutes kLimit{1};

/// Without destructors: the one of KelArc would wait for the request that is not answered.
[[noreturn]] void leave(int exitCode)
{
    std::cout.flush();
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

template <typename... Values, typename Request>
std::tuple<std::decay_t<Values>...> ask(const std::string& what, const Request& request)
{
    support::Await<Values...> answer;
    request(answer.callback());
    if (!answer.wait(kLimit)) {
        std::cerr << "no answer to '" << what << "'\n";
        leave(kUnanswered);
    }
    return answer.values();
}

/// Of a request that answers with a code and these values.
template <typename... Values, typename Request>
int codeOf(const std::string& what, const Request& request)
{
    return std::get<0>(ask<int, Values...>(what, request));
}

bool onOff(const std::string& value)
{
    if (value != "on" && value != "off")
        throw std::invalid_argument("'" + value + "' is not understood; accepted are on and off");
    return value == "on";
}

gnss::FREQUENCY frequencyOf(const std::string& periodMs)
{
    if (periodMs == "1000")
        return gnss::FREQUENCY::EVERY_1000_MS;
    if (periodMs == "500")
        return gnss::FREQUENCY::EVERY_500_MS;
    if (periodMs == "200")
        return gnss::FREQUENCY::EVERY_200_MS;
    if (periodMs == "100")
        return gnss::FREQUENCY::EVERY_100_MS;
    throw std::invalid_argument("period '" + periodMs + "' is not understood; accepted are 1000, 500, 200 and 100");
}

gnss::FORMAT formatOf(const std::string& name)
{
    if (name != "nmea" && name != "raw")
        throw std::invalid_argument("format '" + name + "' is not understood; accepted are nmea and raw");
    return name == "raw" ? gnss::FORMAT::RAW : gnss::FORMAT::NMEA;
}

unsigned char elevationOf(const std::string& degrees)
{
    if (degrees.empty() || degrees.size() > 2 || degrees.find_first_not_of("0123456789") != std::string::npos)
        throw std::invalid_argument("elevation '" + degrees + "' is not understood; accepted are whole degrees");
    return static_cast<unsigned char>(std::stoi(degrees));
}

std::optional<gnss::SYSTEM> systemOf(const std::string& name)
{
    if (name == "glonass")
        return gnss::SYSTEM::GLONASS;
    if (name == "galileo")
        return gnss::SYSTEM::GALILEO;
    if (name == "beidou")
        return gnss::SYSTEM::BEIDOU;
    if (name == "qzss")
        return gnss::SYSTEM::QZSS;
    return std::nullopt;
}

/// The result code of the modem. Throws std::invalid_argument for what there is not.
int set(KelArc& modem, const std::string& name, const std::string& value)
{
    if (const auto system = systemOf(name))
        return codeOf<gnss::SYSTEM, bool>(
            name, [&, on = onOff(value)](auto callback) { modem.setGnssStatus(*system, on, std::move(callback)); });
    if (name == "sbas")
        return codeOf<bool>(name,
                            [&, on = onOff(value)](auto callback) { modem.setSbasStatus(on, std::move(callback)); });
    if (name == "period")
        return codeOf<bool>(name, [&, frequency = frequencyOf(value)](auto callback) {
            modem.setGnssFrequency(frequency, std::move(callback));
        });
    if (name == "elevation")
        return codeOf<bool>(name, [&, elevation = elevationOf(value)](auto callback) {
            modem.setMinElevation(elevation, std::move(callback));
        });
    if (name == "format")
        return codeOf<bool>(
            name, [&, format = formatOf(value)](auto callback) { modem.setGnssFormat(format, std::move(callback)); });
    throw std::invalid_argument("'" + name +
                                "' is not understood; accepted are glonass, galileo, beidou, qzss, sbas, format, "
                                "period, elevation, each with a value, and start, stop, quit");
}

std::tuple<int, std::string> start(KelArc& modem)
{
    return ask<int, std::string&&>("start", [&](auto callback) { modem.startRawGNSS(std::move(callback)); });
}

int obey(KelArc& modem, const std::string& line)
{
    if (line == "start")
        return std::get<0>(start(modem));
    if (line == "stop")
        return codeOf<>(line, [&](auto callback) { modem.stopGNSS(std::move(callback)); });
    const std::size_t space = line.find(' ');
    return set(modem, line.substr(0, space), space == std::string::npos ? "" : line.substr(space + 1));
}

void requireSuccess(const std::string& what, int code)
{
    if (code == 0)
        return;
    std::cerr << what << ": code " << code << '\n';
    leave(kRefused);
}

void run(KelArc& modem, int count, char** arguments)
{
    requireSuccess("open", codeOf<>("open", [&](auto callback) { modem.open(std::move(callback)); }));
    for (int i = 1; i + 1 < count; i += 2)
        requireSuccess(arguments[i], set(modem, arguments[i], arguments[i + 1]));
    const auto [code, path] = start(modem);
    requireSuccess("start", code);
    std::cout << path << std::endl;
    for (std::string line; std::getline(std::cin, line) && line != "quit";) {
        const int answer = obey(modem, line);
        std::cout << (answer == 0 ? "ok" : "code " + std::to_string(answer)) << std::endl;
    }
    requireSuccess("close", codeOf<>("close", [&](auto callback) { modem.close(std::move(callback)); }));
}

}  // namespace

int main(int count, char** arguments)
{
    if (count % 2 == 0) {
        std::cerr << "usage: receiver_host [NAME VALUE]...\n";
        return kMisused;
    }
    KelArc modem([](int level, const char* line) { std::fprintf(stderr, "%d %s\n", level, line); });
    try {
        run(modem, count, arguments);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        leave(kMisused);
    }
    return 0;
}
