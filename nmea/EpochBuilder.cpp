#include "nmea/EpochBuilder.h"

#include <algorithm>

namespace nmea {
namespace {

constexpr double kKmhPerKnot = 1.852;
constexpr int kDayMs = 24 * 60 * 60 * 1000;

// No receiver puts so many kinds of sentences into an epoch; noise with correct checksums might.
constexpr std::size_t kMostKinds = 200;

/// The time field of sentences with a position; each epoch has at least one such sentence.
std::optional<std::size_t> timeFieldOf(const Sentence& sentence)
{
    if (sentence.formatter == "RMC" || sentence.formatter == "GGA" || sentence.formatter == "GNS")
        return 0;
    if (sentence.formatter == "GLL")
        return 4;
    return std::nullopt;
}

std::optional<int> satelliteNumberOf(std::string_view field)
{
    const double number = numberOf(field).value_or(0);
    return number >= 1 && number <= 999 ? std::optional(static_cast<int>(number)) : std::nullopt;
}

/// The signal field of GSV, behind groups of four fields; receivers older than NMEA 4.10 have none.
std::string_view signalOf(const Sentence& gsv)
{
    const bool hasSignal = !gsv.fields.empty() && gsv.fields.size() % 4 == 0 && gsv.fields.back().size() == 1;
    return hasSignal ? std::string_view(gsv.fields.back()) : std::string_view();
}

constexpr std::size_t kGsaSystemId = 17;

std::string keyOf(const Sentence& sentence)
{
    std::string key = sentence.talker + sentence.formatter;
    if (sentence.formatter == "GSV")
        key.append(sentence.field(1)).append("/").append(signalOf(sentence));  // place in its row, signal
    else if (sentence.formatter == "GSA")
        key.append(sentence.field(kGsaSystemId));
    return key;
}

}  // namespace

std::optional<Epoch> EpochBuilder::add(const Sentence& sentence)
{
    const std::string key = keyOf(sentence);
    std::optional<Epoch> complete;
    if (beginsEpoch(sentence, key)) {
        if (isPending())
            complete = finish();
        begin();
    }
    if (m_seen.size() < kMostKinds)
        m_seen.insert(key);
    if (const auto field = timeFieldOf(sentence))
        if (const auto time = timeOf(sentence.field(*field)))
            m_epoch.utcMs = time;
    using Add = void (EpochBuilder::*)(const Sentence&);
    static const std::map<std::string_view, Add> kReaders{
        {"RMC", &EpochBuilder::addRmc}, {"GGA", &EpochBuilder::addGga}, {"GLL", &EpochBuilder::addGll},
        {"GNS", &EpochBuilder::addGns}, {"VTG", &EpochBuilder::addVtg}, {"ZDA", &EpochBuilder::addZda},
        {"GSA", &EpochBuilder::addGsa}, {"GSV", &EpochBuilder::addGsv},
    };
    const auto reader = kReaders.find(sentence.formatter);
    if (reader != kReaders.end())
        (this->*reader->second)(sentence);
    takeDate();
    return complete;
}

std::optional<Epoch> EpochBuilder::flush()
{
    if (!isPending())
        return std::nullopt;
    m_given = true;
    return finish();
}

bool EpochBuilder::beginsEpoch(const Sentence& sentence, const std::string& key) const
{
    const bool seen = m_seen.count(key) > 0;
    const std::optional<std::size_t> field = timeFieldOf(sentence);
    if (!field)  // receivers that put satellites first, and those that tell the time only
        return seen && (m_given || (sentence.formatter == "ZDA" && !m_epoch.utcMs));
    const std::optional<int> time = timeOf(sentence.field(*field));
    if (time && m_epoch.utcMs)
        return *time != *m_epoch.utcMs || (seen && m_given);  // a clock that stands still hides no epoch
    return seen;
}

void EpochBuilder::begin()
{
    Epoch next;
    next.date = m_epoch.date;
    m_epoch = next;
    m_seen.clear();
    m_given = false;
    m_gsaFix.reset();
    m_hasCalendar = m_hasDate = m_hasUsed = m_hasView = false;
}

Epoch EpochBuilder::finish()
{
    if (m_gsaFix.value_or(Fix::none) != Fix::none)  // a GSA without a fix does not undo another's fix
        m_epoch.fix = *m_gsaFix;
    finishTime();
    finishSatellites();
    return m_epoch;
}

void EpochBuilder::finishTime()
{
    if (m_hasCalendar && !m_epoch.utcMs)
        m_epoch.utcMs = m_calendar->utcMs;
    takeDate();
    if (!m_hasDate && m_epoch.utcMs && m_dateMs && *m_dateMs - *m_epoch.utcMs > kDayMs / 2)
        m_epoch.date.reset();  // midnight has passed: another day, but which one?
    m_dateMs = m_epoch.utcMs ? m_epoch.utcMs : m_dateMs;
}

void EpochBuilder::takeDate()
{
    if (m_hasDate || !m_calendar || !m_epoch.utcMs || *m_epoch.utcMs / 1000 != m_calendar->utcMs / 1000)
        return;
    m_epoch.date = m_calendar->date;
    m_hasDate = true;
}

void EpochBuilder::finishSatellites()
{
    Row all;
    for (const auto& [signal, row] : m_rows)
        for (const auto& [key, satellite] : row) {
            Satellite& merged = all.emplace(key, satellite).first->second;
            if (satellite.elevationDeg)
                merged.elevationDeg = satellite.elevationDeg;
            if (satellite.azimuthDeg)
                merged.azimuthDeg = satellite.azimuthDeg;
            merged.carrierDbHz = std::max(merged.carrierDbHz, satellite.carrierDbHz);  // nothing is below any number
        }
    m_epoch.inView.clear();
    for (std::size_t i = 0; i < kSystemCount; ++i)
        m_epoch.satellites[i] = {static_cast<int>(m_used[i].size()), 0};
    double sum = 0;
    int tracked = 0;
    for (auto& [key, satellite] : all) {
        const std::size_t system = indexOf(satellite.system);
        satellite.isUsed = m_used[system].count(satellite.number) > 0;
        sum += satellite.carrierDbHz.value_or(0);
        tracked += satellite.carrierDbHz ? 1 : 0;
        ++m_epoch.satellites[system].inView;
        m_epoch.inView.push_back(satellite);
    }
    m_epoch.meanCarrierDbHz = tracked > 0 ? std::optional(sum / tracked) : std::nullopt;
}

void EpochBuilder::addPosition(const Sentence& sentence, std::size_t first)
{
    const auto latitude = angleOf(sentence.field(first), sentence.field(first + 1));
    const auto longitude = angleOf(sentence.field(first + 2), sentence.field(first + 3));
    if (!latitude || !longitude)
        return;
    m_epoch.latitudeDeg = latitude;
    m_epoch.longitudeDeg = longitude;
}

void EpochBuilder::addRmc(const Sentence& sentence)
{
    if (const auto date = dateOf(sentence.field(8))) {
        m_epoch.date = date;
        m_hasDate = true;
    }
    if (sentence.field(1) != "A")
        return;
    m_epoch.fix = std::max(m_epoch.fix, Fix::twoD);
    addPosition(sentence, 2);
    if (const auto knots = numberOf(sentence.field(6)))
        m_epoch.speedKmh = *knots * kKmhPerKnot;
    if (const auto course = numberOf(sentence.field(7)))
        m_epoch.courseDeg = course;
}

void EpochBuilder::addGga(const Sentence& sentence)
{
    if (numberOf(sentence.field(5)).value_or(0) > 0)
        addHeight(sentence);
}

void EpochBuilder::addGns(const Sentence& sentence)
{
    if (sentence.field(5).find_first_not_of('N') != std::string_view::npos)  // a letter for each system
        addHeight(sentence);
}

void EpochBuilder::addHeight(const Sentence& sentence)
{
    if (const auto altitude = numberOf(sentence.field(8)))
        m_epoch.altitudeM = altitude;
    if (const auto hdop = numberOf(sentence.field(7)))
        m_epoch.hdop = hdop;
    m_epoch.fix = std::max(m_epoch.fix, m_epoch.altitudeM ? Fix::threeD : Fix::twoD);  // unless GSA knows better
    addPosition(sentence, 1);
}

void EpochBuilder::addGll(const Sentence& sentence)
{
    if (sentence.field(5) != "A")
        return;
    m_epoch.fix = std::max(m_epoch.fix, Fix::twoD);
    addPosition(sentence, 0);
}

void EpochBuilder::addVtg(const Sentence& sentence)
{
    if (const auto kmh = numberOf(sentence.field(6)))
        m_epoch.speedKmh = kmh;
    if (const auto course = numberOf(sentence.field(0)))
        m_epoch.courseDeg = course;
}

void EpochBuilder::addZda(const Sentence& sentence)
{
    const auto time = timeOf(sentence.field(0));
    const auto date = dateOf(sentence.field(1), sentence.field(2), sentence.field(3));
    if (!time || !date)
        return;
    m_calendar = Calendar{*time, *date};
    m_hasCalendar = true;
}

void EpochBuilder::addGsa(const Sentence& sentence)
{
    constexpr std::size_t kFirstNumber = 2;
    constexpr std::size_t kNumbers = 12;
    if (!m_hasUsed)
        m_used = {};
    m_hasUsed = true;
    const std::string_view mode = sentence.field(1);
    const Fix fix = mode == "3" ? Fix::threeD : mode == "2" ? Fix::twoD : Fix::none;
    m_gsaFix = std::max(m_gsaFix.value_or(Fix::none), fix);
    for (std::size_t i = kFirstNumber; i < kFirstNumber + kNumbers; ++i) {
        const auto number = satelliteNumberOf(sentence.field(i));
        const auto system =
            number ? systemOf(sentence.talker, sentence.field(kGsaSystemId), *number) : std::optional<System>();
        if (system)
            m_used[indexOf(*system)].insert(*number);
    }
}

void EpochBuilder::addGsv(const Sentence& sentence)
{
    constexpr std::size_t kFirstSatellite = 3;
    constexpr std::size_t kFieldsEach = 4;  // number, elevation, azimuth, C/N0
    if (!m_hasView)
        m_rows.clear();
    m_hasView = true;
    Row& row = m_rows[sentence.talker + "/" + std::string(signalOf(sentence))];
    if (numberOf(sentence.field(1)) == 1)  // a repeated row replaces the earlier one
        row.clear();
    for (std::size_t i = kFirstSatellite; i + kFieldsEach <= sentence.fields.size(); i += kFieldsEach) {
        const auto number = satelliteNumberOf(sentence.field(i));
        const auto system = number ? systemOf(sentence.talker, "", *number) : std::optional<System>();
        if (!system)
            continue;
        const double carrier = numberOf(sentence.field(i + 3)).value_or(0);
        row[{*system, *number}] = {*system,
                                   *number,
                                   numberOf(sentence.field(i + 1)),
                                   numberOf(sentence.field(i + 2)),
                                   carrier > 0 ? std::optional(carrier) : std::nullopt,
                                   false};
    }
}

}  // namespace nmea
