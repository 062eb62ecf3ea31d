#include "arcsim/Convert.h"

#include "modem/Hex.h"
#include "modem/Lsta.h"
#include "modem/Requests.h"
#include "modem/ResultCode.h"
#include "modem/Settings.h"

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

constexpr long long kDayMs = 24LL * 60 * 60 * 1000;
constexpr int kLstaEvent = 34;
constexpr long long kHiccupMs = 100;  // so late the system's scheduler alone may make a call
constexpr std::array<const char*, modem::kLstaSystems> kSystemNames{"GPS", "Glonass", "BeiDou", "Galileo"};

long long rounded(microseconds time)
{
    return std::clamp<long long>((time.count() + 500) / 1000, 0, kDayMs);
}

/// When something happened, in a scenario's time.
class RecordedTime
{
public:
    explicit RecordedTime(const Recording& recording)
        : m_start(recording.calls.empty() ? microseconds(0) : recording.calls.front().at)
    {
    }
    bool canSay(microseconds at) const { return (at - m_start).count() / 1000 < kDayMs; }
    long long ms(microseconds at) const { return rounded(at - m_start); }

private:
    microseconds m_start;
};

/// The plain value, if a scenario may give it to the setting.
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
    std::set<std::string> known;  // read or written before
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

/// The result code; the one function without has a text instead, or none.
int codeOf(const RecordedCall& call)
{
    const bool withoutText = call.function == "ARC_GetArcVersion" && call.end->outputs.dump() == R"({"version":null})";
    return call.end->code == 0 && withoutText ? modem::kGenericError : call.end->code;
}

/// Consecutive calls of one function that failed in the same way.
struct Failures
{
    unsigned first = 0;
    unsigned count = 0;
    int code = 0;
    microseconds took{};  ///< all together
};

ordered_json faultOf(const std::string& function, const Failures& failures)
{
    ordered_json fault{{"function", function}, {"call", failures.first}};
    if (failures.count > 1)
        fault["count"] = failures.count;
    fault["code"] = failures.code;
    fault["latencyMs"] = rounded(failures.took / static_cast<long>(failures.count));
    return fault;
}

/// The faults of all functions in the order in which they first showed.
class Faults
{
public:
    void add(const RecordedCall& call)
    {
        const std::string function(call.function);
        const unsigned number = ++m_counts[function];
        if (!call.end) {
            m_faults.push_back({{"function", function}, {"call", number}, {"hang", true}});
            return;
        }
        const std::optional<std::size_t> request = modem::findRequest(function);
        const long long tookMs = rounded(call.end->took);
        const long long longestMs = modem::kRequests.at(*request).longestMs;
        const bool isLong = tookMs > 2 * longestMs && tookMs >= longestMs + kHiccupMs;
        const int code = codeOf(call);
        if (code != 0)
            addFailure(call, number, code, isLong);
        else if (isLong)
            m_faults.push_back({{"function", function}, {"call", number}, {"latencyMs", tookMs}});
    }
    ordered_json take() { return std::move(m_faults); }

private:
    /// A failure that took unusually long is not mixed with others, whose latencies are one.
    void addFailure(const RecordedCall& call, unsigned number, int code, bool isLong)
    {
        const std::string function(call.function);
        Open& open = m_open[function];
        const bool goesOn = !isLong && open.failures.count > 0 && open.failures.code == code &&
                            open.failures.first + open.failures.count == number;
        if (!goesOn) {
            open = {{number, 0, code, {}}, m_faults.size()};
            m_faults.push_back(nullptr);
        }
        ++open.failures.count;
        open.failures.took += call.end->took;
        m_faults[open.index] = faultOf(function, open.failures);
        if (isLong)
            open.failures.count = 0;
    }

    struct Open
    {
        Failures failures{};
        std::size_t index = 0;
    };
    std::map<std::string, unsigned> m_counts{};
    std::map<std::string, Open> m_open{};
    ordered_json m_faults = ordered_json::array();
};

/// What is known of LSTA in a recording.
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

/// The payload is the record of ARC_CurrentLSTA.
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

/// For which systems the application has asked for reports, as one goes through a recording.
class Subscriptions
{
public:
    explicit Subscriptions(const Recording& recording) : m_calls(recording.calls) {}

    /// After the first `begun` calls; never fewer than before.
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

ordered_json lstaOf(std::vector<LstaReport> reports, const RecordedTime& clock)
{
    std::stable_sort(reports.begin(), reports.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
    std::array<LstaReport, modem::kLstaSystems> known{};  // before anything is known: nothing is received
    ordered_json changes = ordered_json::array();
    for (const LstaReport& report : reports) {
        LstaReport& before = known.at(report.system);
        const bool same =
            report.status == before.status && !(report.value < before.value) && !(report.value > before.value);
        before = report;
        if (!same)
            changes.push_back({{"atMs", clock.ms(report.at)},
                               {"system", kSystemNames.at(report.system)},
                               {"status", report.status},
                               {"value", report.value}});
    }
    return changes;
}

}  // namespace

ordered_json scenarioOf(const Recording& recording)
{
    const RecordedTime clock(recording);
    Faults faults;
    std::vector<LstaReport> reports;
    for (const RecordedCall& call : recording.calls) {
        faults.add(call);
        if (const auto report = reportOf(call); report && clock.canSay(report->at))
            reports.push_back(*report);
    }
    ordered_json events = ordered_json::array();
    Subscriptions subscriptions(recording);
    for (const RecordedEvent& event : recording.events) {
        if (event.id < 0 || !clock.canSay(event.at))
            continue;
        if (const auto report = reportOf(event); report && subscriptions.has(report->system, event.callsBegun)) {
            reports.push_back(*report);
            continue;
        }
        ordered_json planned{{"atMs", clock.ms(event.at)}, {"id", event.id}};
        if (event.data && !event.data->empty())
            planned["payload"] = hexOf(*event.data);
        events.push_back(std::move(planned));
    }
    return {{"settings", settingsOf(recording)},
            {"faults", faults.take()},
            {"events", std::move(events)},
            {"lsta", lstaOf(std::move(reports), clock)}};
}

}  // namespace arcsim
