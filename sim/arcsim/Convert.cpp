#include "arcsim/Convert.h"

#include "arcsim/FaultsOfCalls.h"
#include "modem/Hex.h"
#include "modem/Lsta.h"
#include "modem/Settings.h"
#include "scenario/EventFile.h"
#include "scenario/JsonText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>

namespace arcsim {

namespace {

using nlohmann::ordered_json;
using std::chrono::microseconds;

constexpr int kLstaEvent = 34;
constexpr std::size_t kEventText = 120;  // length of an indented event with every key, without the payload's digits
// The part of a scenario's text that events may fill; the rest is for faults, changes and settings.
constexpr std::size_t kMostEventText = kLargestFile - (4UL << 20U);
static_assert(kMostEventText / kEventText <= kMostEvents && kMostEventText / 2 <= kMostPayloadBytes);
constexpr std::array<const char*, modem::kLstaSystems> kSystemNames{"GPS", "Glonass", "BeiDou", "Galileo"};

/// When something happened, in a scenario's time.
class RecordedTime
{
public:
    explicit RecordedTime(const Recording& recording)
        : m_start(recording.calls.empty() ? microseconds(0) : recording.calls.front().at)
    {
    }
    bool canSay(microseconds at) const { return at - m_start < kLatestTime; }
    long long ms(microseconds at) const { return scenarioMs(at - m_start); }

private:
    microseconds m_start;
};

/// The plain value, if a scenario accepts it for the setting.
std::optional<std::string> settable(const std::string& key, const std::string& quoted)
{
    using Write = modem::Settings::Write;
    modem::Settings settings;
    const Write outcome = settings.write(key, quoted);
    if (outcome != Write::changed && outcome != Write::same)
        return std::nullopt;
    return settings.plain(key);
}

ordered_json settingsOf(const Recording& recording)
{
    ordered_json settings = ordered_json::object();
    std::set<std::string> known;  // keys that were read or written before
    for (const RecordedCall& call : recording.calls) {
        if (call.function != "ARC_CheckModuleSetting")
            continue;
        const ordered_json arguments = call.arguments.value();
        if (!arguments.at("key").is_string())
            continue;
        const std::string key = arguments.at("key");
        const bool failed = call.end && call.end->code != 0;
        if (failed || known.count(key) != 0)
            continue;
        const ordered_json outputs = call.end ? call.end->outputs.value() : ordered_json::object();
        if (!arguments.at("value").is_null()) {
            known.insert(key);
        } else if (outputs.contains("reply")) {
            known.insert(key);
            if (const auto plain = settable(key, outputs.at("reply")))
                settings[key] = *plain;
        }
    }
    return settings;
}

/// The LSTA values that a recording tells.
struct LstaReport
{
    microseconds at{};
    std::size_t system = 0;
    int status = 0;
    double value = 0;
};

bool isLstaSystem(int indicator)
{
    return indicator >= modem::kFirstIndicator &&
           indicator < modem::kFirstIndicator + static_cast<int>(modem::kLstaSystems);
}

std::optional<LstaReport> reportOf(microseconds at, int indicator, int status, double value)
{
    if (!isLstaSystem(indicator) || status == std::numeric_limits<int>::min() || !(std::abs(value) <= 1e9))
        return std::nullopt;
    return LstaReport{at, static_cast<std::size_t>(indicator - modem::kFirstIndicator), status, value};
}

/// The payload of an LSTA event is the record that ARC_CurrentLSTA returns.
std::optional<LstaReport> reportOf(const RecordedEvent& event)
{
    constexpr std::size_t kRecordSize = 64;
    if (event.id != kLstaEvent || !event.data || event.data->size() < kRecordSize)
        return std::nullopt;
    std::int32_t indicator = 0;
    std::int32_t status = 0;
    double value = 0;
    std::memcpy(&indicator, event.data->data(), sizeof indicator);
    std::memcpy(&status, event.data->data() + 8, sizeof status);
    std::memcpy(&value, event.data->data() + 16, sizeof value);
    return reportOf(event.at, indicator, status, value);
}

std::optional<LstaReport> reportOf(const RecordedCall& call)
{
    if (call.function != "ARC_CurrentLSTA" || !call.end)
        return std::nullopt;
    const ordered_json outputs = call.end->outputs.value();
    if (!outputs.contains("record"))
        return std::nullopt;
    const ordered_json& record = outputs.at("record");
    if (record.at("value").is_null())
        return std::nullopt;
    return reportOf(call.end->at, record.at("indicator"), record.at("status"), record.at("value"));
}

/// The systems for which the application has asked for reports, at a moment that advances through a recording.
class Subscriptions
{
public:
    explicit Subscriptions(const Recording& recording) : m_calls(recording.calls) {}

    /// Advances to the moment after the first `begun` calls; `begun` never decreases.
    bool has(std::size_t system, std::size_t begun)
    {
        for (; m_next < begun; ++m_next) {
            const RecordedCall& call = m_calls[m_next];
            const bool failed = call.end && call.end->code != 0;
            if (call.function != "ARC_EnableLSTA" || failed)
                continue;
            const ordered_json arguments = call.arguments.value();
            m_enabled[arguments.at("arcTechnologyId")] = arguments.at("enable");
        }
        return m_enabled[modem::kFirstTechnologyId + static_cast<int>(system)];
    }

private:
    const std::vector<RecordedCall>& m_calls;
    std::size_t m_next = 0;
    std::map<int, bool> m_enabled{};  ///< by technology id
};

/// Counts in `leftOut` the changes that do not fit.
ordered_json lstaOf(std::vector<LstaReport> reports, const RecordedTime& clock, unsigned& leftOut)
{
    std::stable_sort(reports.begin(), reports.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
    std::array<LstaReport, modem::kLstaSystems> known{};  // until the recording tells more: nothing is received
    ordered_json changes = ordered_json::array();
    for (const LstaReport& report : reports) {
        LstaReport& before = known.at(report.system);
        const bool same =
            report.status == before.status && !(report.value < before.value) && !(report.value > before.value);
        before = report;
        if (!same && changes.size() == kMostElements)
            ++leftOut;
        else if (!same)
            changes.push_back({{"atMs", clock.ms(report.at)},
                               {"system", kSystemNames.at(report.system)},
                               {"status", report.status},
                               {"value", report.value}});
    }
    return changes;
}

/// The events that are not LSTA reports.
class Events
{
public:
    void add(const RecordedEvent& event, const RecordedTime& clock)
    {
        const std::vector<unsigned char> payload = event.data.value_or(std::vector<unsigned char>());
        if (payload.size() > kLongestPayload) {
            ++m_tooLong;
            return;
        }
        const std::size_t text = kEventText + 2 * payload.size();
        if (m_leftOut > 0 || m_text + text > kMostEventText) {
            ++m_leftOut;
            return;
        }
        m_text += text;
        ordered_json planned{{"atMs", clock.ms(event.at)}, {"id", event.id}};
        if (!payload.empty())
            planned["payload"] = hexOf(payload);
        m_events.push_back(std::move(planned));
    }
    ordered_json take() { return std::move(m_events); }
    unsigned leftOut() const { return m_leftOut; }
    unsigned tooLong() const { return m_tooLong; }

private:
    ordered_json m_events = ordered_json::array();
    std::size_t m_text = 0;  ///< bytes
    unsigned m_leftOut = 0;
    unsigned m_tooLong = 0;
};

}  // namespace

Converted convert(const Recording& recording)
{
    const RecordedTime clock(recording);
    FaultsOfCalls faults;
    std::vector<LstaReport> reports;
    for (const RecordedCall& call : recording.calls) {
        faults.add(call);
        if (const auto report = reportOf(call); report && clock.canSay(report->at))
            reports.push_back(*report);
    }
    Events events;
    Subscriptions subscriptions(recording);
    for (const RecordedEvent& event : recording.events) {
        if (event.id < 0 || !clock.canSay(event.at))
            continue;
        if (const auto report = reportOf(event); report && subscriptions.has(report->system, event.callsBegun))
            reports.push_back(*report);
        else
            events.add(event, clock);
    }
    Converted converted;
    unsigned changesLeftOut = 0;
    ordered_json changes = lstaOf(std::move(reports), clock, changesLeftOut);
    converted.scenario = {{"settings", settingsOf(recording)},
                          {"faults", faults.take()},
                          {"events", events.take()},
                          {"lsta", std::move(changes)}};
    const auto tell = [&](const char* list, unsigned leftOut, const std::string& room) {
        if (leftOut > 0)
            converted.leftOut.push_back(std::string(list) + ": the last " + std::to_string(leftOut) +
                                        " are left out; a scenario has room for " + room);
    };
    const std::string most = std::to_string(kMostElements);
    tell("faults", faults.leftOut(), most);
    tell("events", events.leftOut(), std::to_string(kMostEventText >> 20U) + " MiB of them");
    tell("lsta", changesLeftOut, most);
    if (events.tooLong() > 0)
        converted.leftOut.push_back("events: " + std::to_string(events.tooLong()) + " with more than " +
                                    std::to_string(kLongestPayload) + " bytes are left out");
    return converted;
}

}  // namespace arcsim
