#pragma once

#include "kelarcctl/monitor/Canvas.h"
#include "kelarcctl/monitor/ResultLine.h"
#include "nmea/Epoch.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// Names of nmea::System, in its order.
struct SystemName
{
    const char* word;   ///< as in JSON
    const char* shown;  ///< three letters
    char letter;
    const char* setting;  ///< the command that switches it; empty: always on
};
extern const std::array<SystemName, nmea::kSystemCount> kSystemNames;

/// The mean C/N0 of one system over time, in columns of a few epochs each.
class History
{
public:
    static constexpr int kEpochsEach = 5;

    /// 0 while none of the system's satellites is received.
    void add(double carrierDbHz);
    /// The last columns, up to the given number, oldest first. Empty until a satellite was received.
    std::vector<double> last(std::size_t count) const;
    bool wasHeard() const { return m_most > 0; }
    double most() const { return m_most; }

private:
    std::deque<double> m_columns{};  ///< complete ones
    double m_sum = 0;
    int m_count = 0;
    double m_most = 0;
};

struct SettingRow
{
    std::string command;
    std::string key;
    std::string unit;
    std::string accepted;  ///< empty: cannot be written
    std::optional<std::string> value{};
    std::string problem{};  ///< why there is no value
};

struct LstaRow
{
    std::string system;
    bool isKnown = false;
    int status = 0;
    double value = 0;
    std::string problem{};
};

/// A request that has not been answered.
struct Waiting
{
    std::uint64_t id = 0;
    std::string what{};
    long long sinceMs = 0;
    bool mayVanish = false;  ///< a stop ends it without an answer
    bool isOverdue = false;
};

struct Entry
{
    std::string time{};  ///< UTC of this machine, "hh:mm:ss"
    Style style = Style::plain;
    std::string text{};
    int times = 1;  ///< how often in a row
};

enum class Link
{
    opening,
    open,
    noDaemon,  ///< requests are answered 31
};

enum class RawOutput
{
    off,
    starting,
    running,
};

/// Everything that is shown. Times are milliseconds since the monitor's start.
struct Model
{
    static constexpr std::size_t kMostEntries = 200;
    static constexpr std::size_t kMostPositions = 600;

    struct Position
    {
        double latitudeDeg;
        double longitudeDeg;
    };

    long long nowMs = 0;
    Link link = Link::opening;
    long long linkSinceMs = 0;
    RawOutput output = RawOutput::off;
    std::string device{};

    std::optional<nmea::Epoch> epoch{};
    long long epochMs = 0;  ///< when the epoch was complete
    long long lastSentenceMs = 0;
    std::uint64_t epochs = 0;
    std::uint64_t sentences = 0;
    std::uint64_t wrongChecksums = 0;
    std::uint64_t garbage = 0;
    std::array<History, nmea::kSystemCount> carriers{};
    std::deque<Position> positions{};

    std::string clientLibrary{};
    std::array<std::string, 2> ril{};
    std::vector<SettingRow> settings{};
    long long readMs = 0;         ///< when a setting was last read from the modem
    std::vector<LstaRow> lsta{};  ///< in the order of kelarc::lsta::kSystems

    std::vector<Waiting> waiting{};  ///< the oldest first
    std::string runningTask{};       ///< empty: none
    std::uint32_t queued = 0;
    std::vector<std::string> queuedTasks{};
    Attempts attempts{};
    std::deque<Entry> results{};
    std::string lastSubject{};  ///< of the last result
    std::deque<Entry> events{};
    std::uint64_t lost = 0;  ///< events and log lines dropped because they came too fast
    Entry notice{};          ///< the outcome of the user's last request
    long long noticeMs = 0;

    void add(const nmea::Epoch& next);
    /// Adds an entry. One with the same non-empty `subject` as the last replaces that entry and counts it.
    void addResult(Entry entry, const std::string& subject = "");
    void addEvent(Entry entry);
    void setNotice(Style style, const std::string& text);

    /// Whether the receiver's last epoch is outdated.
    bool isEpochOld() const;
    /// The same for the settings and LSTA, which are read every 10 s.
    bool areSettingsOld() const;

    const SettingRow* setting(const std::string& command) const;
    bool isOff(nmea::System system) const;  ///< switched off by its setting
    int tracked(nmea::System system) const;
};

}  // namespace kelarcctl
