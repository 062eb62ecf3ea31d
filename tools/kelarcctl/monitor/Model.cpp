#include "kelarcctl/monitor/Model.h"

#include <algorithm>
#include <utility>

namespace kelarcctl {

namespace {

constexpr std::size_t kMostColumns = 300;
constexpr long long kEpochLastsMs = 3000;  // three periods of the slowest receiver
constexpr long long kSettingsLastMs = 30'000;

void keep(std::deque<Entry>& entries, Entry entry)
{
    entries.push_back(std::move(entry));
    if (entries.size() > Model::kMostEntries)
        entries.pop_front();
}

double meanCarrier(const nmea::Epoch& epoch, nmea::System system)
{
    double sum = 0;
    int count = 0;
    for (const nmea::Satellite& satellite : epoch.inView) {
        if (satellite.system != system || !satellite.carrierDbHz)
            continue;
        sum += *satellite.carrierDbHz;
        ++count;
    }
    return count == 0 ? 0 : sum / count;
}

}  // namespace

const std::array<SystemName, nmea::kSystemCount> kSystemNames{{{"gps", "GPS", 'G', ""},
                                                               {"glonass", "GLO", 'R', "system glonass"},
                                                               {"galileo", "GAL", 'E', "system galileo"},
                                                               {"beidou", "BDS", 'C', "system beidou"},
                                                               {"qzss", "QZS", 'J', "system qzss"},
                                                               {"sbas", "SBA", 'S', "sbas"}}};

void History::add(double carrierDbHz)
{
    m_most = std::max(m_most, carrierDbHz);
    m_sum += carrierDbHz;
    if (++m_count < kEpochsEach)
        return;
    m_columns.push_back(m_sum / m_count);
    m_sum = 0;
    m_count = 0;
    if (m_columns.size() > kMostColumns)
        m_columns.pop_front();
}

std::vector<double> History::last(std::size_t count) const
{
    if (!wasHeard() || count == 0)
        return {};
    const std::size_t complete = std::min(m_columns.size(), count - (m_count > 0 ? 1 : 0));
    std::vector<double> columns(m_columns.end() - static_cast<std::ptrdiff_t>(complete), m_columns.end());
    if (m_count > 0)
        columns.push_back(m_sum / m_count);
    return columns;
}

void Model::add(const nmea::Epoch& next)
{
    epoch = next;
    epochMs = nowMs;
    ++epochs;
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i)
        carriers[i].add(meanCarrier(next, static_cast<nmea::System>(i)));
    if (next.latitudeDeg && next.longitudeDeg)
        positions.push_back({*next.latitudeDeg, *next.longitudeDeg});
    if (positions.size() > kMostPositions)
        positions.pop_front();
}

void Model::addResult(Entry entry, const std::string& subject)
{
    if (!subject.empty() && subject == lastSubject && !results.empty()) {
        entry.times = results.back().times + 1;
        results.pop_back();
    }
    lastSubject = subject;
    keep(results, std::move(entry));
}

void Model::addEvent(Entry entry)
{
    keep(events, std::move(entry));
}

void Model::setNotice(Style style, const std::string& text)
{
    notice = {"", style, text};
    noticeMs = nowMs;
}

bool Model::isEpochOld() const
{
    return epoch && (link != Link::open || output != RawOutput::running || nowMs - epochMs >= kEpochLastsMs);
}

bool Model::areSettingsOld() const
{
    return readMs > 0 && (link != Link::open || nowMs - readMs >= kSettingsLastMs);
}

const SettingRow* Model::setting(const std::string& command) const
{
    const auto found =
        std::find_if(settings.begin(), settings.end(), [&](const SettingRow& row) { return row.command == command; });
    return found == settings.end() ? nullptr : &*found;
}

bool Model::isOff(nmea::System system) const
{
    const SettingRow* const row = setting(kSystemNames[nmea::indexOf(system)].setting);
    return row != nullptr && row->value == "off";
}

int Model::tracked(nmea::System system) const
{
    if (!epoch)
        return 0;
    return static_cast<int>(
        std::count_if(epoch->inView.begin(), epoch->inView.end(), [&](const nmea::Satellite& satellite) {
            return satellite.system == system && satellite.carrierDbHz.has_value();
        }));
}

}  // namespace kelarcctl
