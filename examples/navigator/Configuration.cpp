#include "navigator/Configuration.h"

#include "kelarc/names.h"
#include "navigator/LogOutput.h"
#include "navigator/ReportText.h"

#include <cstring>
#include <functional>
#include <type_traits>

namespace navigator {
namespace {

using namespace kelarc;

gnss::FREQUENCY frequencyOf(int periodMs)
{
    struct Row
    {
        gnss::FREQUENCY frequency;
        int periodMs;
    };
    constexpr Row kPeriods[] = {{gnss::FREQUENCY::EVERY_1000_MS, 1000},
                                {gnss::FREQUENCY::EVERY_500_MS, 500},
                                {gnss::FREQUENCY::EVERY_200_MS, 200},
                                {gnss::FREQUENCY::EVERY_100_MS, 100}};
    for (const Row& row : kPeriods)
        if (row.periodMs == periodMs)
            return row.frequency;
    return gnss::FREQUENCY::UNKNOWN;
}

template <typename Enumeration>
std::enable_if_t<std::is_enum_v<Enumeration>, std::string> textOf(Enumeration value)
{
    return to_string(value);
}

std::string textOf(unsigned char number)
{
    return std::to_string(number);
}

std::string textOf(const std::string& quoted)
{
    const bool isQuoted = quoted.size() >= 2 && quoted.front() == '"' && quoted.back() == '"';
    return isQuoted ? quoted.substr(1, quoted.size() - 2) : quoted;
}

/// A text that fills its array has no terminating zero.
std::string textOf(const char (&text)[64])
{
    return std::string(text, ::strnlen(text, sizeof text));
}

struct SystemRow
{
    gnss::SYSTEM system;
    bool Options::*isWanted;
};
constexpr SystemRow kSystems[] = {{gnss::SYSTEM::GLONASS, &Options::glonass},
                                  {gnss::SYSTEM::GALILEO, &Options::galileo},
                                  {gnss::SYSTEM::BEIDOU, &Options::beidou},
                                  {gnss::SYSTEM::QZSS, &Options::qzss}};

void listen(Requests& requests, const lsta::System& system, std::function<void(int)>&& onRefusal)
{
    constexpr int kParameter = 0;  // the modem defines its meaning
    requests.modem().setLstaGnssStatus(
        system.tech, true, kParameter,
        [inbox = requests.inbox()](lsta::TYPE type, int status, double value) {
            inbox->put(LstaReport{type, status, value});
        },
        std::move(onRefusal));
}

/// One list of settings: asks, prints, counts what was refused.
class Dialogue
{
public:
    Dialogue(Requests& requests, Report& report) : m_requests(requests), m_report(report) {}

    template <typename Value, typename Start>
    void read(const std::string& name, const Start& start)
    {
        const auto [code, value] = m_requests.ask<int, Value>("read " + name, start);
        answer(name, code, textOf(value));
    }

    template <typename Start>
    void write(const std::string& name, const std::string& value, const Start& start)
    {
        const auto [code, changed] = m_requests.ask<int, bool>("set " + name + " to " + value, start);
        answer(name, code, value, changed ? "changed" : "was so already");
    }

    void answer(const std::string& name, int code, const std::string& value, const std::string& remark = "")
    {
        if (code == 0) {
            m_report.item(name, value, remark);
            return;
        }
        ++refusals;
        m_report.item(name, format("refused with result code %d", code));
        say("the modem refused '%s' with result code %d; the log lines above say what it means", name.c_str(), code);
    }

    int refusals = 0;

private:
    Requests& m_requests;
    Report& m_report;
};

}  // namespace

int showVersions(Requests& requests, Report& report)
{
    KelArc& modem = requests.modem();
    Dialogue dialogue(requests, report);
    report.heading("Versions");
    dialogue.read<std::string>("client library", [&](auto&& callback) { modem.getArcVersion(callback); });
    const auto [code, versions] =
        requests.ask<int, RilVersion>("read the RIL version", [&](auto&& callback) { modem.getRilVersion(callback); });
    dialogue.answer("RIL, first text", code, textOf(versions.primary));
    dialogue.answer("RIL, second text", code, textOf(versions.secondary));
    return dialogue.refusals;
}

int showSettings(Requests& requests, Report& report)
{
    KelArc& modem = requests.modem();
    Dialogue dialogue(requests, report);
    report.heading("Settings found in the modem");
    dialogue.read<CPU_POWER>("CPU power", [&](auto&& callback) { modem.getCpuPower(callback); });
    dialogue.read<RESULT>("CPU power saving", [&](auto&& callback) { modem.getCpuPsm(callback); });
    dialogue.read<gnss::FORMAT>("output format", [&](auto&& callback) { modem.getGnssFormat(callback); });
    dialogue.read<gnss::FREQUENCY>("output period", [&](auto&& callback) { modem.getGnssFrequency(callback); });
    dialogue.read<RESULT>("dead-reckoning sync", [&](auto&& callback) { modem.getDRSync(callback); });
    for (const SystemRow& row : kSystems) {
        const std::string name = to_string(row.system);
        const auto [code, system, result] = requests.ask<int, gnss::SYSTEM, RESULT>(
            "read " + name, [&](auto&& callback) { modem.getGnssStatus(row.system, callback); });
        static_cast<void>(system);
        dialogue.answer(name, code, textOf(result));
    }
    dialogue.read<RESULT>("SBAS", [&](auto&& callback) { modem.getSbasStatus(callback); });
    dialogue.read<unsigned char>("minimum elevation", [&](auto&& callback) { modem.getMinElevation(callback); });
    dialogue.read<unsigned char>("raw data mask", [&](auto&& callback) { modem.getRawMask(callback); });
    dialogue.read<std::string>("raw data version", [&](auto&& callback) { modem.getGnssRawVersion(callback); });
    return dialogue.refusals;
}

int configureReceiver(Requests& requests, Report& report, const Options& options)
{
    KelArc& modem = requests.modem();
    Dialogue dialogue(requests, report);
    report.heading("Configuring the receiver");
    const auto onOff = [](bool on) { return on ? "on" : "off"; };
    dialogue.write("output format", "NMEA",
                   [&](auto&& callback) { modem.setGnssFormat(gnss::FORMAT::NMEA, callback); });
    for (const SystemRow& row : kSystems) {
        const bool on = options.*row.isWanted;
        const std::string name = to_string(row.system);
        const auto [code, system, changed] =
            requests.ask<int, gnss::SYSTEM, bool>("set " + name + " to " + onOff(on), [&](auto&& callback) {
                modem.setGnssStatus(row.system, on, callback);
            });
        static_cast<void>(system);
        dialogue.answer(name, code, onOff(on), changed ? "changed" : "was so already");
    }
    dialogue.write("SBAS", onOff(options.sbas), [&](auto&& callback) { modem.setSbasStatus(options.sbas, callback); });
    dialogue.write("output period", std::to_string(options.periodMs) + " ms",
                   [&](auto&& callback) { modem.setGnssFrequency(frequencyOf(options.periodMs), callback); });
    const auto elevation = static_cast<unsigned char>(options.minElevationDeg);
    dialogue.write("minimum elevation", textOf(elevation),
                   [&](auto&& callback) { modem.setMinElevation(elevation, callback); });
    return dialogue.refusals;
}

int enableLsta(Requests& requests, Report& report)
{
    KelArc& modem = requests.modem();
    Dialogue dialogue(requests, report);
    report.heading("LSTA, per system");
    for (const lsta::System& system : lsta::kSystems) {
        const std::string name = system.name;
        support::Await<int> refusal;
        listen(requests, system, refusal.callback());
        // Switching on is answered only when it fails. Requests are served in order: this answer tells that it is over.
        const auto [code, status, value] = requests.ask<int, bool, int>(
            "read LSTA of " + name, [&](auto&& callback) { modem.getLstaGnss(system.tech, callback); });
        if (refusal.wait(std::chrono::milliseconds(0)))
            dialogue.answer(name + " notifications", std::get<0>(refusal.values()), "");
        dialogue.answer(name, code, status ? format("on, value %d", value) : "off");
    }
    return dialogue.refusals;
}

void listenToLsta(Requests& requests)
{
    for (const lsta::System& system : lsta::kSystems)
        listen(requests, system, [&system](int code) {
            say("the modem refused '%s notifications' with result code %d; the log lines above say what it means",
                system.name, code);
        });
}

}  // namespace navigator
