#include "receiver/ReplayStatus.h"

#include "receiver/Nmea.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

namespace arcsim {

namespace {

using Fields = std::vector<std::string_view>;

constexpr double kMpsPerKnot = 1852.0 / 3600;

std::string_view at(const Fields& fields, std::size_t index)
{
    return index < fields.size() ? fields[index] : std::string_view();
}

/// Which system a satellite number belongs to, by the talker or, in sentences of talker GN, by the system id.
std::optional<GnssSystem> systemOf(std::string_view talker, std::string_view systemId, int number)
{
    if (talker == "GP" || systemId == "1")
        return number >= 33 && number <= 64 ? GnssSystem::Sbas : GnssSystem::Gps;
    if (talker == "GL" || systemId == "2")
        return GnssSystem::Glonass;
    if (talker == "GA" || systemId == "3")
        return GnssSystem::Galileo;
    if (talker == "GB" || talker == "BD" || systemId == "4")
        return GnssSystem::Beidou;
    if (talker == "GQ" || systemId == "5")
        return GnssSystem::Qzss;
    return std::nullopt;
}

class Summary
{
public:
    explicit Summary(const ReceiverStatus& previous) : m_status(previous)
    {
        m_status.fix = FixState::None;
        m_status.latitudeDeg = m_status.longitudeDeg = m_status.altitudeM = 0;
        m_status.speedMps = m_status.courseDeg = 0;
    }

    void sentence(const Fields& fields)
    {
        if (fields[0].size() != 5)
            return;
        const std::string_view talker = fields[0].substr(0, 2);
        const std::string_view formatter = fields[0].substr(2);
        if (formatter == "RMC")
            rmc(fields);
        else if (formatter == "GGA")
            gga(fields);
        else if (formatter == "GSA")
            gsa(talker, fields);
        else if (formatter == "GSV")
            gsv(talker, fields);
    }

    ReceiverStatus finish()
    {
        if (m_gsaFix)
            m_status.fix = *m_gsaFix;
        const bool hasView =
            std::any_of(m_carriers.begin(), m_carriers.end(), [](const auto& c) { return !c.empty(); });
        for (std::size_t i = 0; i < kGnssSystemCount; ++i) {
            SystemStatus& system = m_status.systems[i];
            if (hasView)
                system = summaryOf(m_carriers[i]);
            if (m_gsaFix)
                system.used = static_cast<int>(m_used[i].size());
        }
        return m_status;
    }

private:
    using Carriers = std::map<int, int>;  // by satellite: the best C/N0 of its signals, 0 while not tracked

    static SystemStatus summaryOf(const Carriers& carriers)
    {
        SystemStatus system;
        int sum = 0;
        for (const auto& [number, carrier] : carriers) {
            static_cast<void>(number);
            ++system.inView;
            system.tracked += carrier > 0 ? 1 : 0;
            sum += carrier;
        }
        system.meanCarrierDbHz = system.tracked > 0 ? static_cast<double>(sum) / system.tracked : 0;
        return system;
    }

    void position(const Fields& fields, std::size_t first)
    {
        const auto latitude = nmea::angleOf(at(fields, first), at(fields, first + 1));
        const auto longitude = nmea::angleOf(at(fields, first + 2), at(fields, first + 3));
        if (!latitude || !longitude)
            return;
        m_status.latitudeDeg = *latitude;
        m_status.longitudeDeg = *longitude;
    }

    void rmc(const Fields& fields)
    {
        if (const auto utc = nmea::utcOf(at(fields, 9), at(fields, 1)))
            m_status.utc = *utc;
        if (at(fields, 2) != "A")
            return;
        m_status.fix = std::max(m_status.fix, FixState::Fix2D);
        position(fields, 3);
        m_status.speedMps = nmea::valueOf(at(fields, 7)).value_or(0) * kMpsPerKnot;
        m_status.courseDeg = nmea::valueOf(at(fields, 8)).value_or(0);
    }

    void gga(const Fields& fields)
    {
        if (at(fields, 6).empty() || at(fields, 6) == "0")
            return;
        m_status.fix = FixState::Fix3D;  // unless GSA knows better
        position(fields, 2);
        m_status.altitudeM = nmea::valueOf(at(fields, 9)).value_or(0);
    }

    void gsa(std::string_view talker, const Fields& fields)
    {
        const FixState fix = at(fields, 2) == "3"   ? FixState::Fix3D
                             : at(fields, 2) == "2" ? FixState::Fix2D
                                                    : FixState::None;
        m_gsaFix = std::max(m_gsaFix.value_or(FixState::None), fix);
        constexpr std::size_t kFirstNumber = 3;
        constexpr std::size_t kSystemId = 18;
        for (std::size_t i = kFirstNumber; i < kFirstNumber + 12; ++i)
            if (const auto number = nmea::valueOf(at(fields, i)))
                if (const auto system = systemOf(talker, at(fields, kSystemId), static_cast<int>(*number)))
                    m_used[indexOf(*system)].insert(static_cast<int>(*number));
    }

    void gsv(std::string_view talker, const Fields& fields)
    {
        constexpr std::size_t kFirstSatellite = 4;
        for (std::size_t i = kFirstSatellite; i + 3 < fields.size(); i += 4) {
            const auto number = nmea::valueOf(fields[i]);
            const auto system = number ? systemOf(talker, "", static_cast<int>(*number)) : std::nullopt;
            if (!system)
                continue;
            int& carrier = m_carriers[indexOf(*system)][static_cast<int>(*number)];
            carrier = std::max(carrier, static_cast<int>(nmea::valueOf(fields[i + 3]).value_or(0)));
        }
    }

    ReceiverStatus m_status;
    std::optional<FixState> m_gsaFix;
    std::array<Carriers, kGnssSystemCount> m_carriers;
    std::array<std::set<int>, kGnssSystemCount> m_used;
};

}  // namespace

ReceiverStatus statusOfSentences(std::string_view epoch, const ReceiverStatus& previous)
{
    Summary summary(previous);
    while (!epoch.empty()) {
        const std::size_t length = std::min(epoch.find('\n'), epoch.size() - 1) + 1;
        const std::string_view body = nmea::bodyOf(epoch.substr(0, length));
        if (!body.empty())
            summary.sentence(nmea::fieldsOf(body));
        epoch.remove_prefix(length);
    }
    return summary.finish();
}

}  // namespace arcsim
