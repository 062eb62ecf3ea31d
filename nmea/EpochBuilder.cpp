#include "nmea/EpochBuilder.h"

#include <algorithm>

namespace nmea {
namespace {

constexpr double kKmhPerKnot = 1.852;

bool carriesTime(const Sentence& sentence)
{
    return sentence.formatter == "RMC" || sentence.formatter == "GGA";  // in both the first field
}

std::string keyOf(const Sentence& sentence)
{
    std::string key = sentence.talker + sentence.formatter;
    if (sentence.formatter == "GSV" && !sentence.fields.empty())
        key.append(sentence.field(1)).append("/").append(sentence.fields.back());  // place in its row, signal
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
    m_seen.insert(key);
    if (carriesTime(sentence))
        if (const auto time = timeOf(sentence.field(0)))
            m_epoch.utcMs = time;

    if (sentence.formatter == "RMC")
        addRmc(sentence);
    else if (sentence.formatter == "GGA")
        addGga(sentence);
    else if (sentence.formatter == "VTG")
        addVtg(sentence);
    else if (sentence.formatter == "GSA")
        addGsa(sentence);
    else if (sentence.formatter == "GSV")
        addGsv(sentence);
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
    if (!carriesTime(sentence))
        return seen && m_given;  // receivers that put satellites first
    const std::optional<int> time = timeOf(sentence.field(0));
    if (time && m_epoch.utcMs)
        return *time != *m_epoch.utcMs;
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
    m_hasUsed = m_hasView = false;
}

Epoch EpochBuilder::finish()
{
    if (m_gsaFix)
        m_epoch.fix = *m_gsaFix;
    m_epoch.inView.clear();
    double sum = 0;
    int tracked = 0;
    for (std::size_t i = 0; i < kSystemCount; ++i) {
        m_epoch.satellites[i] = {static_cast<int>(m_used[i].size()), static_cast<int>(m_view[i].size())};
        for (const auto& [number, satellite] : m_view[i]) {
            sum += satellite.carrierDbHz.value_or(0);
            tracked += satellite.carrierDbHz ? 1 : 0;
            m_epoch.inView.push_back(satellite);
            m_epoch.inView.back().isUsed = m_used[i].count(number) > 0;
        }
    }
    if (tracked > 0)
        m_epoch.meanCarrierDbHz = sum / tracked;
    return m_epoch;
}

void EpochBuilder::addRmc(const Sentence& sentence)
{
    if (const auto date = dateOf(sentence.field(8)))
        m_epoch.date = date;
    if (sentence.field(1) != "A")
        return;
    m_epoch.fix = std::max(m_epoch.fix, Fix::twoD);
    m_epoch.latitudeDeg = angleOf(sentence.field(2), sentence.field(3));
    m_epoch.longitudeDeg = angleOf(sentence.field(4), sentence.field(5));
    if (const auto knots = numberOf(sentence.field(6)))
        m_epoch.speedKmh = *knots * kKmhPerKnot;
    m_epoch.courseDeg = numberOf(sentence.field(7));
}

void EpochBuilder::addGga(const Sentence& sentence)
{
    if (numberOf(sentence.field(5)).value_or(0) <= 0)
        return;
    m_epoch.altitudeM = numberOf(sentence.field(8));
    m_epoch.hdop = numberOf(sentence.field(7));
    m_epoch.fix = std::max(m_epoch.fix, m_epoch.altitudeM ? Fix::threeD : Fix::twoD);  // unless GSA knows better
    m_epoch.latitudeDeg = angleOf(sentence.field(1), sentence.field(2));
    m_epoch.longitudeDeg = angleOf(sentence.field(3), sentence.field(4));
}

void EpochBuilder::addVtg(const Sentence& sentence)
{
    if (const auto kmh = numberOf(sentence.field(6)))
        m_epoch.speedKmh = kmh;
    if (const auto course = numberOf(sentence.field(0)))
        m_epoch.courseDeg = course;
}

void EpochBuilder::addGsa(const Sentence& sentence)
{
    constexpr std::size_t kFirstNumber = 2;
    constexpr std::size_t kNumbers = 12;
    constexpr std::size_t kSystemId = 17;
    if (!m_hasUsed)
        m_used = {};
    m_hasUsed = true;
    const std::string_view mode = sentence.field(1);
    const Fix fix = mode == "3" ? Fix::threeD : mode == "2" ? Fix::twoD : Fix::none;
    m_gsaFix = std::max(m_gsaFix.value_or(Fix::none), fix);
    for (std::size_t i = kFirstNumber; i < kFirstNumber + kNumbers; ++i) {
        const int number = static_cast<int>(numberOf(sentence.field(i)).value_or(0));
        if (number <= 0)
            continue;
        if (const auto system = systemOf(sentence.talker, sentence.field(kSystemId), number))
            m_used[indexOf(*system)].insert(number);
    }
}

void EpochBuilder::addGsv(const Sentence& sentence)
{
    constexpr std::size_t kFirstSatellite = 3;
    constexpr std::size_t kFieldsEach = 4;  // number, elevation, azimuth, C/N0
    if (!m_hasView)
        m_view = {};
    m_hasView = true;
    for (std::size_t i = kFirstSatellite; i + kFieldsEach <= sentence.fields.size(); i += kFieldsEach) {
        const int number = static_cast<int>(numberOf(sentence.field(i)).value_or(0));
        const auto system = number > 0 ? systemOf(sentence.talker, "", number) : std::nullopt;
        if (!system)
            continue;
        Satellite& satellite = m_view[indexOf(*system)][number];
        satellite.system = *system;
        satellite.number = number;
        satellite.elevationDeg = numberOf(sentence.field(i + 1));
        satellite.azimuthDeg = numberOf(sentence.field(i + 2));
        const double carrier = std::max(satellite.carrierDbHz.value_or(0), numberOf(sentence.field(i + 3)).value_or(0));
        if (carrier > 0)
            satellite.carrierDbHz = carrier;
    }
}

}  // namespace nmea
