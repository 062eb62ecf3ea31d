#include "kelarcctl/Advice.h"
#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Findings.h"
#include "kelarcctl/Queries.h"
#include "kelarcctl/Reception.h"

#include <algorithm>
#include <cstdio>
#include <link.h>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace kelarcctl {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kLongestRestart{3};
constexpr seconds kLongestAnswer{10};   // of one request; opening takes the longest, under a second
constexpr seconds kLongestSilence{10};  // the slowest output has a period of one second
constexpr seconds kLongestSearch{15};   // until satellites are heard, if there are any
constexpr seconds kLongestColdStart{60};
constexpr milliseconds kEpochEnd{150};  // no byte for so long: the epoch is complete
constexpr unsigned kEpochsToCheck = 3;  // enough sentences to judge them
constexpr int kHighMask = 20;           // satellites below are lost to the fix where houses hide the others
constexpr double kWeakDbHz = 28;        // open sky gives 35 to 50
constexpr int kFewestForFix = 4;
constexpr int kEnoughInView = 3;  // of a system, to wonder why none is heard
constexpr double kManyBroken = 0.1;
constexpr const char* kOpening = "opening the modem";

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

struct SystemName
{
    nmea::System system;
    const char* name;
    const char* setting;  ///< that switches it on; null: always on
};
constexpr SystemName kSystems[] = {{nmea::System::gps, "GPS", nullptr},
                                   {nmea::System::glonass, "GLONASS", "system glonass"},
                                   {nmea::System::galileo, "Galileo", "system galileo"},
                                   {nmea::System::beidou, "BeiDou", "system beidou"},
                                   {nmea::System::qzss, "QZSS", "system qzss"}};

struct Tally
{
    int inView = 0;
    int heard = 0;
    double sumDbHz = 0;
};

Tally tallyOf(const nmea::Epoch& epoch, std::optional<nmea::System> system = std::nullopt)
{
    Tally tally;
    for (const nmea::Satellite& satellite : epoch.inView) {
        if (system ? satellite.system != *system : satellite.system == nmea::System::sbas)
            continue;
        ++tally.inView;
        tally.heard += satellite.carrierDbHz ? 1 : 0;
        tally.sumDbHz += satellite.carrierDbHz.value_or(0);
    }
    return tally;
}

std::string text(const char* format, double value)
{
    char bytes[64];
    std::snprintf(bytes, sizeof bytes, format, value);
    return bytes;
}

/// Checks one thing after the other, each on top of those before it.
class Doctor
{
public:
    Doctor(Session& session, const Output& output) : m_session(session), m_findings(output) {}

    int run()
    {
        check("client library", [&] { return clientLibrary(); });
        check("RIL daemon", [&] { return daemon(); });
        check("open", [&] { return open(); });
        check("settings readable", [&] { return readable(); });
        check("settings plausible", [&] { return plausible(); });
        check("raw output", [&] { return start(); });
        check("sentences arrive", [&] { return arrive(); });
        check("sentences correct", [&] { return correct(); });
        check("satellites in view", [&] { return inView(); });
        check("signal", [&] { return signal(); });
        check("fix", [&] { return fix(); });
        m_findings.finish();
        return m_findings.hasFailed() ? kExitRefused : kExitOk;
    }

private:
    static Finding failed(std::string reason, std::string next)
    {
        return {"", State::failed, "", {{std::move(reason), std::move(next), std::nullopt}}};
    }
    static Finding failed(const Trouble& trouble) { return {"", State::failed, "", {problemOf(trouble)}}; }
    static Problem problemOf(const Trouble& trouble)
    {
        std::string text = trouble.text;
        for (const std::string& note : trouble.notes)
            text += "; " + note;
        return {text + ". " + trouble.cause, trouble.next, trouble};
    }
    static Finding fine(std::string detail) { return {"", State::ok, std::move(detail), {}}; }

    void check(const char* name, const std::function<Finding()>& look)
    {
        Finding finding;
        if (m_isStuck) {
            finding = {name, State::skipped, "", {}};
        } else {
            m_session.limit(kLongestAnswer);
            try {
                finding = look();
            } catch (const Failure& failure) {
                if (failure.exitCode() == kExitInterrupted)
                    throw;
                finding = failed(troubleOf(failure));
                m_isStuck = true;
            } catch (const std::system_error& error) {
                finding = failed(error.what(), "see whether another program has taken the device");
                m_isStuck = true;
            }
        }
        finding.check = name;
        m_findings.add(std::move(finding));
    }

    /// What a check finds on whose success all others rely.
    Finding stuck(Finding finding)
    {
        m_isStuck = true;
        return finding;
    }

    Finding clientLibrary()
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

    /// The daemon is asked by opening: whatever is answered but a lost connection shows that it is there.
    Finding daemon()
    {
        m_opened = std::make_shared<Opened>();
        m_session.modem().open([opened = m_opened](int) { opened->bell.wake(); });
        // A daemon that restarts is given the time for it; one that is not there is not waited for any longer.
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

    Finding open()
    {
        if (m_session.modem().isOpen() || m_session.wait(m_opened->bell, m_session.deadline(), kOpening))
            return fine("");
        return stuck(failed(hindrance()));
    }

    Trouble hindrance() const { return m_session.hindrance(kOpening, Session::Clock::now() - m_begun); }

    /// The first call of all runs, before the modem itself is asked.
    bool isConnecting() const
    {
        return m_session.modem().getRunningTaskName().find("ARC_SetNotificationMethod") != std::string::npos;
    }

    Finding readable()
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

    std::optional<std::string> valueOf(const std::string& command) const
    {
        for (const auto& [setting, reading] : m_readings)
            if (setting->command == command)
                return reading.value;
        return std::nullopt;
    }

    bool isOff(const SystemName& system) const { return system.setting != nullptr && valueOf(system.setting) == "off"; }

    Finding plausible()
    {
        Finding finding = fine("");
        for (const auto& [setting, reading] : m_readings)
            if (reading.code == 0 && !reading.value)
                finding.problems.push_back({setting->command + " has a value that is not understood",
                                            "kelarcctl get " + setting->key +
                                                (!setting->isWritable() ? ""
                                                                        : "; then kelarcctl " + setting->command +
                                                                              " with one of: " + setting->accepted)});
        for (const SystemName& system : kSystems)
            if (isOff(system) && system.system != nmea::System::qzss)  // serves a part of the world only
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

    Finding start()
    {
        const auto [code, path] = m_session.ask<int, std::string>("starting the raw output", [&](auto&& callback) {
            m_session.modem().startRawGNSS(std::forward<decltype(callback)>(callback));
        });
        if (code != 0)
            return stuck(failed(m_session.refusal(code, "starting the raw output")));
        m_path = path;
        return fine(path);
    }

    /// Reads until `isEnough` or for the time given.
    template <typename Enough>
    bool readUntil(milliseconds limit, const Enough& isEnough)
    {
        m_session.limit(limit);
        const auto end = m_session.deadline();
        while (!isEnough()) {
            const auto pause = std::min(end, Session::Clock::now() + kEpochEnd);
            if (m_session.waitFor(m_reception->descriptor(), pause, "reading " + m_path))
                m_reception->read();
            else if (pause == end)
                return false;
            else
                m_reception->flush();
        }
        return true;
    }

    Finding arrive()
    {
        m_reception.emplace(m_path);
        if (!readUntil(kLongestSilence, [&] { return m_reception->hasBytes(); }))
            return stuck(failed("nothing has come from " + m_path + " in " +
                                    std::to_string(seconds(kLongestSilence).count()) + " s",
                                "see whether another program reads it: fuser " + m_path));
        readUntil(kLongestSilence, [&] { return m_reception->epochs() >= kEpochsToCheck; });
        const auto& counters = m_reception->counters();
        if (valueOf("format") == "raw")
            return stuck(failed("what comes from " + m_path + " is raw data", "kelarcctl format nmea"));
        if (counters.sentences == 0)
            return stuck(failed("what comes from " + m_path + " are no sentences",
                                "see whether another program reads it: fuser " + m_path));
        return fine(std::to_string(counters.sentences) + " sentences in " + std::to_string(m_reception->epochs()) +
                    " epochs");
    }

    Finding correct()
    {
        const auto& counters = m_reception->counters();
        // The first line may have begun before it was listened to.
        const auto broken = counters.wrongChecksums + counters.garbage - (counters.garbage > 0 ? 1 : 0);
        if (broken == 0)
            return fine("");
        Finding finding = failed(
            std::to_string(counters.wrongChecksums) + " wrong checksums, " + std::to_string(counters.garbage) +
                " lines that are no sentences, beside " + std::to_string(counters.sentences) + " correct ones",
            "see whether another program reads it: fuser " + m_path + "; else the line to the receiver is disturbed");
        if (static_cast<double>(broken) < kManyBroken * static_cast<double>(counters.sentences))
            finding.state = State::warning;
        return finding;
    }

    Finding inView()
    {
        readUntil(kLongestSearch, [&] { return tallyOf(m_reception->last()).inView >= kFewestForFix; });
        const nmea::Epoch& epoch = m_reception->last();
        if (tallyOf(epoch).inView == 0)
            return failed("no satellite is in view", "see whether the antenna is connected and under the open sky");
        Finding finding = fine("");
        for (const SystemName& system : kSystems) {
            const int count = tallyOf(epoch, system.system).inView;
            if (isOff(system) && count == 0) {
                if (system.system != nmea::System::qzss)
                    finding.detail += std::string(finding.detail.empty() ? "" : ", ") + system.name + " off";
                continue;
            }
            if (system.system == nmea::System::qzss && count == 0)
                continue;
            finding.detail +=
                std::string(finding.detail.empty() ? "" : ", ") + system.name + " " + std::to_string(count);
        }
        return finding;
    }

    bool isFixed() const { return m_reception->last().fix != nmea::Fix::none; }

    /// Every system that has satellites in view is heard?
    bool isEverySystemHeard() const
    {
        return std::all_of(std::begin(kSystems), std::end(kSystems), [&](const SystemName& system) {
            const Tally tally = tallyOf(m_reception->last(), system.system);
            return tally.inView < kEnoughInView || tally.heard > 0;
        });
    }

    /// For how long the receiver has looked for a fix, by the epochs that it has put out: a recording may be faster.
    seconds searchedSince(Session::Clock::time_point begin) const
    {
        const milliseconds period(std::stoi(valueOf("period").value_or("1000")));
        return std::max(std::chrono::duration_cast<seconds>(Session::Clock::now() - begin),
                        std::chrono::duration_cast<seconds>(m_reception->epochs() * period));
    }

    /// Judged once there is a fix, or could have been one: before, satellites are found one after the other.
    Finding signal()
    {
        const auto begin = Session::Clock::now();
        readUntil(std::chrono::hours(24), [&] { return isFixed(); });
        m_searched = searchedSince(begin);
        if (isFixed())
            readUntil(kLongestSearch, [&] { return isEverySystemHeard(); });
        const nmea::Epoch& epoch = m_reception->last();
        const Tally all = tallyOf(epoch);
        Finding finding = fine(std::to_string(all.heard) + " of " + std::to_string(all.inView) + " satellites heard" +
                               (all.heard == 0 ? "" : ", mean C/N0 " + text("%.0f dB-Hz", all.sumDbHz / all.heard)));
        if (all.inView > 0 && all.heard == 0) {
            finding.problems.push_back({"satellites are in view and none is heard: no antenna, or jamming",
                                        "see whether the antenna is connected; look for a jammer or a transmitter "
                                        "nearby: kelarcctl monitor shows when the signal comes and goes"});
            finding.state = State::failed;
            return finding;
        }
        for (const SystemName& system : kSystems) {
            const Tally tally = tallyOf(epoch, system.system);
            if (tally.inView >= kEnoughInView && tally.heard == 0)
                finding.problems.push_back(
                    {std::string(system.name) + ": " + std::to_string(tally.inView) +
                         " satellites in view and none is heard: its band may be jammed",
                     "look for a transmitter nearby; kelarcctl monitor shows when the signal comes and goes"});
        }
        if (all.heard > 0 && all.sumDbHz / all.heard < kWeakDbHz)
            finding.problems.push_back({"the signal is weak: interference, a bad antenna or no open sky",
                                        "see to antenna, cable and sky; open sky gives 35 to 50 dB-Hz"});
        finding.state = finding.problems.empty() ? State::ok : State::warning;
        return finding;
    }

    Finding fix()
    {
        const nmea::Epoch& epoch = m_reception->last();
        if (epoch.fix == nmea::Fix::none) {
            const int heard = tallyOf(epoch).heard;
            const std::string found = "none in " + std::to_string(m_searched.count()) + " s; " + std::to_string(heard) +
                                      " satellites heard, and 4 are needed";
            if (heard < kFewestForFix)
                return failed(found, "see to the signal first");
            if (m_searched < kLongestColdStart)
                return failed(found + "; too early to tell, since a cold start takes up to a minute",
                              "give it more time: kelarcctl doctor --timeout 3m");
            return failed(found + "; no cold start takes that long",
                          "kelarcctl gnss reset-assistance, then this again; if it stays, somebody sends false signals "
                          "or the receiver is defective: ask the modem's maker");
        }
        std::string detail = epoch.fix == nmea::Fix::threeD ? "3D" : "2D";
        if (epoch.latitudeDeg && epoch.longitudeDeg)
            detail += text(", latitude %.5f", *epoch.latitudeDeg) + text(", longitude %.5f", *epoch.longitudeDeg);
        const auto used =
            std::count_if(epoch.inView.begin(), epoch.inView.end(), [](const auto& each) { return each.isUsed; });
        return fine(detail + ", " + std::to_string(used) + " satellites used");
    }

    struct Opened
    {
        Bell bell{};
    };
    static constexpr int kDenied = 21;
    static constexpr int kOtherRelease = 34;

    Session& m_session;
    Findings m_findings;
    bool m_isStuck = false;
    std::shared_ptr<Opened> m_opened{};
    Session::Clock::time_point m_begun{};
    std::vector<std::pair<const Setting*, Setting::Reading>> m_readings{};
    seconds m_searched{0};
    std::string m_path{};
    std::optional<Reception> m_reception{};
};

}  // namespace

void addDoctor(CLI::App& app, Invocation& invocation)
{
    CLI::App& doctor = addCommand(
        app, "doctor", "Check what usually goes wrong, in order, from the client library to the fix", invocation);
    doctor.callback([&invocation, &doctor] {
        invocation.isOpened = false;
        if (doctor.count("--log-level") == 0)
            invocation.logLevel = 5;  // what it finds says the same, once
        invocation.run = [](Session& session, const Output& output) {
            session.beQuiet();
            return Doctor(session, output).run();
        };
    });
}

}  // namespace kelarcctl
