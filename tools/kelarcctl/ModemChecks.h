#pragma once

#include "kelarcctl/Findings.h"
#include "kelarcctl/Settings.h"

#include "nmea/Epoch.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelarcctl {

/// The longest wait of the doctor for one request; the slowest request, opening, takes under a second.
constexpr std::chrono::seconds kLongestAnswer{10};

/// A satellite system, and the setting that switches it on.
struct ReceivedSystem
{
    nmea::System system;
    const char* name;
    const char* setting;  ///< null: always on
};
inline constexpr ReceivedSystem kReceivedSystems[] = {{nmea::System::gps, "GPS", nullptr},
                                                      {nmea::System::glonass, "GLONASS", "system glonass"},
                                                      {nmea::System::galileo, "Galileo", "system galileo"},
                                                      {nmea::System::beidou, "BeiDou", "system beidou"},
                                                      {nmea::System::qzss, "QZSS", "system qzss"}};

/// The doctor's checks of the client library and the modem, to be called in this order.
class ModemChecks
{
public:
    explicit ModemChecks(Session& session) : m_session(session) {}

    Finding clientLibrary();
    Finding daemon();
    Finding open();
    Finding readable();
    Finding plausible() const;

    /// The value of a setting, if it could be read and understood.
    std::optional<std::string> valueOf(const std::string& command) const;
    bool isOff(const ReceivedSystem& system) const;

private:
    struct Opened
    {
        Bell bell{};
    };

    Trouble hindrance() const;
    bool isConnecting() const;

    Session& m_session;
    std::shared_ptr<Opened> m_opened{};
    Session::Clock::time_point m_begun{};
    std::vector<std::pair<const Setting*, Setting::Reading>> m_readings{};
};

}  // namespace kelarcctl
