#include "kelarcctl/ModemChecks.h"

#include "kelarcctl/Advice.h"
#include "kelarcctl/Queries.h"

#include <link.h>

namespace kelarcctl {

namespace {

constexpr std::chrono::seconds kLongestRestart{3};
constexpr int kHighMask = 20;  // with a higher mask, too few satellites remain where houses hide some
constexpr const char* kOpening = "opening the modem";
constexpr int kDenied = 21;
constexpr int kOtherRelease = 34;

/// Where the dynamic loader found the client library.
std::string clientLibraryPath()
{
    std::string path;
    ::dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* found) {
            const std::string name(info->dlpi_name);
            if (name.find("libArcRilD") == std::string::npos)
                return 0;
            *static_cast<std::string*>(found) = name;
            return 1;
        },
        &path);
    return path;
}

}  // namespace

Finding ModemChecks::clientLibrary()
{
    const ArcVersion version = readArcVersion(m_session);
    const std::string path = clientLibraryPath();
    if (version.code != 0) {
        Finding finding = failed(m_session.refusal(version.code, "reading the client library's version"));
        finding.detail = path;
        return finding;
    }
    return fine(version.text + (path.empty() ? "" : ", " + path));
}

/// Opening shows whether the daemon is there: any answer except a lost connection means yes.
Finding ModemChecks::daemon()
{
    m_opened = std::make_shared<Opened>();
    m_session.modem().open([opened = m_opened](int) { opened->bell.wake(); });
    // Waits as long as a restart of the daemon takes, but no longer.
    m_begun = Session::Clock::now();
    if (!m_session.wait(m_opened->bell, m_begun + kLongestRestart, kOpening)) {
        const Trouble trouble = hindrance();
        const bool isAbsent = trouble.code == kNoDaemon || trouble.code == kOtherRelease;
        if (isAbsent || (trouble.code == kDenied && isConnecting()))
            return stuck(failed(trouble));
        if (trouble.kind == Trouble::Kind::silent && isConnecting())
            return stuck(failed(trouble));
    }
    return fine("answers");
}

Finding ModemChecks::open()
{
    if (m_session.modem().isOpen() || m_session.wait(m_opened->bell, m_session.deadline(), kOpening))
        return fine("");
    return stuck(failed(hindrance()));
}

Trouble ModemChecks::hindrance() const
{
    return m_session.hindrance(kOpening, Session::Clock::now() - m_begun);
}

/// Checks the very first call, before the modem itself is asked.
bool ModemChecks::isConnecting() const
{
    return m_session.modem().getRunningTaskName().find("ARC_SetNotificationMethod") != std::string::npos;
}

Finding ModemChecks::readable()
{
    Finding finding = fine("");
    for (const Setting& setting : settings()) {
        m_session.limit(kLongestAnswer);
        m_readings.emplace_back(&setting, setting.read(m_session));
        const int code = m_readings.back().second.code;
        if (code != 0)
            finding.problems.push_back(problemOf(m_session.refusal(code, "reading " + setting.command)));
    }
    finding.state = finding.problems.empty() ? State::ok : State::failed;
    finding.detail =
        std::to_string(m_readings.size() - finding.problems.size()) + " of " + std::to_string(m_readings.size());
    return finding;
}

std::optional<std::string> ModemChecks::valueOf(const std::string& command) const
{
    for (const auto& [setting, reading] : m_readings)
        if (setting->command == command)
            return reading.value;
    return std::nullopt;
}

bool ModemChecks::isOff(const ReceivedSystem& system) const
{
    return system.setting != nullptr && valueOf(system.setting) == "off";
}

Finding ModemChecks::plausible() const
{
    Finding finding = fine("");
    for (const auto& [setting, reading] : m_readings)
        if (reading.code == 0 && !reading.value)
            finding.problems.push_back({setting->command + " has a value that is not understood",
                                        "kelarcctl get " + setting->key +
                                            (!setting->isWritable() ? ""
                                                                    : "; then kelarcctl " + setting->command +
                                                                          " with one of: " + setting->accepted)});
    for (const ReceivedSystem& system : kReceivedSystems)
        if (isOff(system) && system.system != nmea::System::qzss)  // QZSS serves only a part of the world
            finding.problems.push_back(
                {std::string(system.name) + " is off", "kelarcctl " + std::string(system.setting) + " on"});
    if (valueOf("format") == "raw")
        finding.problems.push_back({"the output is raw data, no sentences", "kelarcctl format nmea"});
    if (const auto mask = valueOf("min-elevation"); mask && std::stoi(*mask) > kHighMask)
        finding.problems.push_back(
            {"satellites below " + *mask + " degrees are not used", "kelarcctl min-elevation 5"});
    finding.state = finding.problems.empty() ? State::ok : State::warning;
    return finding;
}

}  // namespace kelarcctl
