#include "navigator/Report.h"

#include "kelarc/logsink.h"
#include "navigator/ReportText.h"

#include <cerrno>
#include <cstdio>
#include <type_traits>

namespace navigator {
namespace {

using nmea::Fix;

constexpr unsigned kLinesPerHeader = 30;
constexpr int kNameWidth = 20;
constexpr int kValueWidth = 12;

}  // namespace

void Report::heading(const std::string& text)
{
    line("");
    line(text, Color::heading);
}

void Report::item(const std::string& name, const std::string& value, const std::string& remark)
{
    line(remark.empty()
             ? format("  %-*s %s", kNameWidth, name.c_str(), value.c_str())
             : format("  %-*s %-*s %s", kNameWidth, name.c_str(), kValueWidth, value.c_str(), remark.c_str()));
}

void Report::explainColumns(const std::array<bool, nmea::kSystemCount>& enabled)
{
    m_enabled = enabled;
    m_linesSinceHeader = 0;
    heading("Navigation");
    line("  UTC time; fix: none, 2D or 3D; position in degrees; altitude above mean sea level in m; speed in");
    line("  km/h; course over ground in degrees, 0 is north. Per system: satellites used in the fix / in view,");
    line("  - where the system is off. C/N0: mean signal strength in dB-Hz. >> lines: news from the modem.");
}

void Report::epoch(const nmea::Epoch& epoch)
{
    if (m_linesSinceHeader++ % kLinesPerHeader == 0)
        line("UTC      Fix     Latitude    Longitude  Alt m   km/h Crs   GPS   GLO   GAL   BDS   QZS  SBAS C/N0",
             Color::heading);
    ++m_linesShown;
    const Color color = epoch.fix == Fix::threeD ? Color::good : epoch.fix == Fix::twoD ? Color::fair : Color::poor;
    line(format("%s %-4s %11s %12s %6s %6s %3s", timeText(epoch).c_str(), fixText(epoch.fix),
                angleText(epoch.latitudeDeg, 'N', 'S').c_str(), angleText(epoch.longitudeDeg, 'E', 'W').c_str(),
                numberText(epoch.altitudeM, 1).c_str(), numberText(epoch.speedKmh, 1).c_str(),
                courseText(epoch.courseDeg).c_str()) +
             satellites(epoch) + format(" %4s", numberText(epoch.meanCarrierDbHz, 0).c_str()),
         color);
}

std::string Report::satellites(const nmea::Epoch& epoch) const
{
    std::string text;
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i) {
        const nmea::Satellites& satellites = epoch.satellites[i];
        const bool isOff = !m_enabled[i] && satellites.inView == 0 && satellites.used == 0;
        text += format(" %5s", isOff ? "-" : format("%d/%d", satellites.used, satellites.inView).c_str());
    }
    return text;
}

void Report::event(const ModemEvent& event)
{
    std::visit(
        [this](const auto& each) {
            if constexpr (std::is_same_v<decltype(each), const LstaReport&>)
                ++m_lstaReports;
            else
                ++m_notifications;
            line(">> " + eventText(each), Color::event);
        },
        event);
}

void Report::summary(const Summary& summary)
{
    const auto seconds = [](std::chrono::milliseconds duration) {
        return format("%.1f s", static_cast<double>(duration.count()) / 1000);
    };
    const Trip& trip = summary.trip;
    heading("Summary");
    item("Output received for", seconds(summary.outputTime));
    item("Epochs", format("%llu, %llu of them with a 3D fix; %u shown", static_cast<unsigned long long>(trip.epochs()),
                          static_cast<unsigned long long>(trip.epochsWith3D()), m_linesShown));
    if (const auto& first = trip.firstFix())
        item("First fix after", seconds(first->sinceStart) + ", at " + timeText(first->epoch) + " UTC" +
                                    (first->epoch.date ? " on " + dateText(first->epoch) : ""));
    else
        item("First fix after", "there was none");
    item("Distance travelled", format("%.0f m", trip.distanceM()));
    item("Sentences", format("%llu", static_cast<unsigned long long>(summary.counters.sentences)));
    item("Checksum errors", format("%llu", static_cast<unsigned long long>(summary.counters.wrongChecksums)));
    item("Other bad lines", format("%llu", static_cast<unsigned long long>(summary.counters.garbage)));
    item("News from the modem", format("%u LSTA, %u other", m_lstaReports, m_notifications));
}

bool Report::isHeard() const
{
    return std::ferror(stdout) == 0;
}

void Report::line(const std::string& text, Color color)
{
    constexpr const char* kCodes[] = {"", "\033[32m", "\033[33m", "\033[31m", "\033[36m", "\033[1m"};
    const bool colored = m_color && color != Color::none;
    std::printf("%s%s%s\n", colored ? kCodes[static_cast<std::size_t>(color)] : "",
                kelarc::logsink::printable(text).c_str(), colored ? "\033[0m" : "");
    if (std::fflush(stdout) != 0 && errno != EPIPE)  // every line is news, also for a reader of a pipe
        m_isLost = true;
}

}  // namespace navigator
