#include "arcsim/StatusText.h"

#include "arcsim/Duration.h"
#include "arcsim/FaultText.h"

#include <cmath>
#include <cstdio>

namespace arcsim::program {

namespace {

constexpr std::size_t kWidth = 80;
constexpr double kHighestShown = 1e9;  // all values of the simulation are far below

const Json kNothing;

const Json& at(const Json& object, const char* key)
{
    return object.is_object() && object.contains(key) ? object[key] : kNothing;
}

bool isTrue(const Json& value)
{
    return value.is_boolean() && value.get<bool>();
}

std::string text(const Json& value)
{
    return value.is_string() ? printable(value.get<std::string>()) : "-";
}

std::string whole(const Json& value)
{
    const auto number = wholeNumberOf(value);
    return number ? std::to_string(*number) : "-";
}

std::string number(const Json& value, int decimals, const char* unit)
{
    if (!value.is_number() || !(std::abs(value.get<double>()) < kHighestShown))
        return "-";
    char shown[64];
    std::snprintf(shown, sizeof shown, "%.*f", decimals, value.get<double>());
    return std::string(shown) + unit;
}

std::string flag(const Json& value, const char* yes, const char* no)
{
    return value.is_boolean() ? (value.get<bool>() ? yes : no) : "-";
}

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Width in UTF-8 characters.
std::size_t widthOf(const std::string& line)
{
    std::size_t width = 0;
    for (const char byte : line)
        width += isContinuation(byte) ? 0 : 1;
    return width;
}

std::string cutTo(std::string line, std::size_t width)
{
    if (widthOf(line) <= width)
        return line;
    while (widthOf(line) > width - 3 || (!line.empty() && isContinuation(line.back()) && widthOf(line) > width - 3))
        line.pop_back();
    return line + "...";
}

std::string left(const std::string& cell, std::size_t width)
{
    const std::string shown = cutTo(cell, width);
    return shown + std::string(width - widthOf(shown), ' ');
}

std::string right(const std::string& cell, std::size_t width)
{
    const std::string shown = cutTo(cell, width);
    return std::string(width - widthOf(shown), ' ') + shown;
}

/// The lines of the display, each cut to the width and without trailing blanks.
class Page
{
public:
    void line(std::string content)
    {
        content.erase(content.find_last_not_of(' ') + 1);
        m_text += cutTo(content, kWidth) + '\n';
    }
    void section(const std::string& title)
    {
        m_text += '\n';
        line(title);
    }
    void row(const std::string& name, const std::string& value) { line("  " + left(name, kName) + ' ' + value); }

    static constexpr std::size_t kName = 11;
    const std::string& text() const { return m_text; }

private:
    std::string m_text{};
};

void addModem(Page& page, const Json& status)
{
    const auto ms = wholeNumberOf(at(status, "scenarioMs"));
    const Json& output = at(status, "output");
    page.line("arcsim " + text(at(status, "version")) + ", process " + whole(at(status, "pid")));
    page.section("Modem");
    page.row("engine", text(at(status, "engine")));
    page.row("time", text(at(status, "time")) + ", " +
                         (ms ? durationText(std::chrono::milliseconds(*ms)) : std::string("-")) + " of the scenario");
    page.row("outage", flag(at(status, "outage"), "yes, clients cannot reach the modem", "no"));
    page.row("output", text(at(output, "path")));
    page.row("epochs", whole(at(output, "written")) + " written, " + whole(at(output, "unheard")) + " unheard, " +
                           whole(at(output, "dropped")) + " dropped");
}

std::string jammedText(const Json& systems)
{
    if (!systems.is_array())
        return "-";
    std::string names;
    for (const Json& system : systems)
        names += (names.empty() ? "" : ", ") + text(system);
    return names.empty() ? "nothing" : names;
}

void addReceiver(Page& page, const Json& status)
{
    page.section("Receiver");
    page.row("fix", text(at(status, "fix")) + (isTrue(at(status, "noFix")) ? " (kept from one)" : ""));
    page.row("utc", text(at(status, "utc")));
    page.row("position", number(at(status, "latitudeDeg"), 6, "") + ' ' + number(at(status, "longitudeDeg"), 6, "") +
                             ", " + number(at(status, "altitudeM"), 1, " m"));
    page.row("motion",
             number(at(status, "speedMps"), 1, " m/s") + ", course " + number(at(status, "courseDeg"), 1, " degrees"));
    page.row("jammed", jammedText(at(status, "jammed")));
}

void addSatellites(Page& page, const Json& satellites)
{
    if (!satellites.is_object() || satellites.empty())
        return;
    page.section("Satellites    in view  tracked  used  mean C/N0");
    for (const auto& [name, of] : satellites.items())
        page.row(printable(name), right(whole(at(of, "inView")), 7) + right(whole(at(of, "tracked")), 9) +
                                      right(whole(at(of, "used")), 6) + "  " +
                                      number(at(of, "meanCarrierDbHz"), 1, " dB-Hz"));
}

void addSettings(Page& page, const Json& settings)
{
    if (!settings.is_object() || settings.empty())
        return;
    page.section("Settings");
    for (const auto& [key, value] : settings.items())
        page.line("  " + left(printable(key), 24) + ' ' + text(value));
}

void addLsta(Page& page, const Json& lsta)
{
    if (!lsta.is_object() || lsta.empty())
        return;
    page.section("LSTA           status    value");
    for (const auto& [system, of] : lsta.items())
        page.row(printable(system), right(whole(at(of, "status")), 7) + ' ' + right(number(at(of, "value"), 1, ""), 8));
}

void addClients(Page& page, const Json& clients)
{
    if (!clients.is_array())
        return;
    page.section("Clients       process  open  handler      calls  waiting");
    for (const Json& client : clients)
        page.row(text(at(client, "name")),
                 right(whole(at(client, "pid")), 7) + right(flag(at(client, "open"), "yes", "no"), 6) +
                     right(flag(at(client, "handler"), "yes", "no"), 9) + right(whole(at(client, "calls")), 11) +
                     right(whole(at(client, "waiting")), 9));
    if (clients.empty())
        page.line("  none");
}

void addCalls(Page& page, const Json& calls)
{
    if (!calls.is_object())
        return;
    page.section("Calls                           count   failed");
    for (const auto& [function, of] : calls.items())
        page.line("  " + left(printable(function), 26) + right(whole(at(of, "count")), 9) +
                  right(whole(at(of, "failed")), 9));
    if (calls.empty())
        page.line("  none");
}

void addFaults(Page& page, const Json& faults, const Json& hanging)
{
    if (!faults.is_array())
        return;
    page.section("Faults injected");
    for (const Json& fault : faults)
        page.line("  " + faultText(fault, CallNumber::fromTheStart));
    if (faults.empty())
        page.line("  none");
    const auto count = wholeNumberOf(hanging);
    if (count && *count > 0)
        page.line("  " + std::to_string(*count) + (*count == 1 ? " call hangs" : " calls hang"));
}

}  // namespace

std::string statusText(const Json& status)
{
    Page page;
    addModem(page, status);
    addReceiver(page, status);
    addSatellites(page, at(status, "satellites"));
    addSettings(page, at(status, "settings"));
    addLsta(page, at(status, "lsta"));
    addClients(page, at(status, "clients"));
    addCalls(page, at(status, "calls"));
    addFaults(page, at(status, "faults"), at(status, "hanging"));
    return page.text();
}

}  // namespace arcsim::program
