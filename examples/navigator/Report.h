#pragma once

#include "navigator/Inbox.h"
#include "navigator/Trip.h"
#include "nmea/Epoch.h"
#include "nmea/NmeaReader.h"

#include <array>
#include <chrono>
#include <string>

namespace navigator {

/// Writes the results to stdout. Lines are at most 100 characters long.
class Report
{
public:
    explicit Report(bool color) : m_color(color) {}

    void heading(const std::string& text);
    /// One line of a list under a heading.
    void item(const std::string& name, const std::string& value, const std::string& remark = "");

    /// Explains the columns. `enabled`: by indexOf(); the others' columns hold a dash.
    void explainColumns(const std::array<bool, nmea::kSystemCount>& enabled);
    void epoch(const nmea::Epoch& epoch);
    void event(const ModemEvent& event);

    struct Summary
    {
        const Trip& trip;
        const nmea::NmeaReader::Counters& counters;
        std::chrono::milliseconds outputTime;
    };
    void summary(const Summary& summary);

    /// False once stdout takes no more, for example because the reader of a pipe has gone.
    bool isHeard() const;
    /// True once something could not be written for another reason.
    bool isLost() const { return m_isLost; }

private:
    enum class Color
    {
        none,
        good,
        fair,
        poor,
        event,
        heading,
    };
    void line(const std::string& text, Color color = Color::none);
    std::string satellites(const nmea::Epoch& epoch) const;

    const bool m_color;
    bool m_isLost = false;
    std::array<bool, nmea::kSystemCount> m_enabled{};
    unsigned m_linesSinceHeader = 0;
    unsigned m_linesShown = 0;
    unsigned m_lstaReports = 0;
    unsigned m_notifications = 0;
};

}  // namespace navigator
