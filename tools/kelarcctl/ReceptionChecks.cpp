#include "kelarcctl/ReceptionChecks.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace kelarcctl {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kLongestSilence{10};  // the slowest output has a period of one second
constexpr seconds kLongestSearch{15};   // until satellites are received, if there are any
constexpr seconds kLongestColdStart{60};
constexpr milliseconds kEpochEnd{150};  // an epoch is complete after this long without a byte
constexpr unsigned kEpochsToCheck = 3;  // enough sentences for a judgement
constexpr double kWeakDbHz = 28;        // open sky gives 35 to 50
constexpr int kFewestForFix = 4;
constexpr int kEnoughInView = 3;  // satellites of a system; with fewer, receiving none is normal
constexpr double kManyBroken = 0.1;

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

}  // namespace

Finding ReceptionChecks::start()
{
    const auto [code, path] = m_session.ask<int, std::string>("starting the raw output", [&](auto&& callback) {
        m_session.modem().startRawGNSS(std::forward<decltype(callback)>(callback));
    });
    if (code != 0)
        return stuck(failed(m_session.refusal(code, "starting the raw output")));
    m_path = path;
    return fine(path);
}

/// Reads until `isEnough`, at most for the given time.
template <typename Enough>
bool ReceptionChecks::readUntil(milliseconds limit, const Enough& isEnough)
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

Finding ReceptionChecks::arrive()
{
    m_reception.emplace(m_path);
    if (!readUntil(kLongestSilence, [&] { return m_reception->hasBytes(); }))
        return stuck(
            failed("nothing has come from " + m_path + " in " + std::to_string(seconds(kLongestSilence).count()) + " s",
                   "see whether another program reads it: fuser " + m_path));
    readUntil(kLongestSilence, [&] { return m_reception->epochs() >= kEpochsToCheck; });
    const auto& counters = m_reception->counters();
    if (m_modem.valueOf("format") == "raw")
        return stuck(failed("what comes from " + m_path + " is raw data", "kelarcctl format nmea"));
    if (counters.sentences == 0)
        return stuck(failed("what comes from " + m_path + " are no sentences",
                            "see whether another program reads it: fuser " + m_path));
    return fine(std::to_string(counters.sentences) + " sentences in " + std::to_string(m_reception->epochs()) +
                " epochs");
}

Finding ReceptionChecks::correct() const
{
    const auto& counters = m_reception->counters();
    // Reading may have begun in the middle of the first line.
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

Finding ReceptionChecks::inView()
{
    readUntil(kLongestSearch, [&] { return tallyOf(m_reception->last()).inView >= kFewestForFix; });
    const nmea::Epoch& epoch = m_reception->last();
    if (tallyOf(epoch).inView == 0)
        return failed("no satellite is in view", "see whether the antenna is connected and under the open sky");
    Finding finding = fine("");
    for (const ReceivedSystem& system : kReceivedSystems) {
        const int count = tallyOf(epoch, system.system).inView;
        if (m_modem.isOff(system) && count == 0) {
            if (system.system != nmea::System::qzss)
                finding.detail += std::string(finding.detail.empty() ? "" : ", ") + system.name + " off";
            continue;
        }
        if (system.system == nmea::System::qzss && count == 0)
            continue;
        finding.detail += std::string(finding.detail.empty() ? "" : ", ") + system.name + " " + std::to_string(count);
    }
    return finding;
}

bool ReceptionChecks::isFixed() const
{
    return m_reception->last().fix != nmea::Fix::none;
}

/// Whether every system with satellites in view is received.
bool ReceptionChecks::isEverySystemHeard() const
{
    return std::all_of(std::begin(kReceivedSystems), std::end(kReceivedSystems), [&](const ReceivedSystem& system) {
        const Tally tally = tallyOf(m_reception->last(), system.system);
        return tally.inView < kEnoughInView || tally.heard > 0;
    });
}

/// How long the receiver has searched for a fix, measured by its epochs, since a recording may be faster.
seconds ReceptionChecks::searchedSince(Session::Clock::time_point begin) const
{
    const milliseconds period(std::stoi(m_modem.valueOf("period").value_or("1000")));
    return std::max(std::chrono::duration_cast<seconds>(Session::Clock::now() - begin),
                    std::chrono::duration_cast<seconds>(m_reception->epochs() * period));
}

/// Judged only once there is a fix or could have been one: before, the receiver is still finding satellites.
Finding ReceptionChecks::signal()
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
    for (const ReceivedSystem& system : kReceivedSystems) {
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

Finding ReceptionChecks::fix() const
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

}  // namespace kelarcctl
