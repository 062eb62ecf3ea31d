#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace arcsim::modem {

/// The satellite systems that have an LSTA, in the order of their technology ids (10..) and indicators (1000..).
enum class LstaSystem
{
    gps,
    glonass,
    beidou,
    galileo,
};

constexpr std::size_t kLstaSystems = 4;
constexpr int kFirstTechnologyId = 10;
constexpr int kFirstIndicator = 1000;

std::optional<LstaSystem> lstaSystemOf(int technologyId);

/// LSTA of one system, as the simulator defines it: status 1 while satellites of the system are tracked, and as value
/// their mean C/N0 in dB-Hz; otherwise 0 and 0.
struct Lsta
{
    int indicator = 0;
    int status = 0;
    double value = 0;
};

/// Values that replace the LSTA derived from reception.
struct LstaLevel
{
    int status = 0;
    double value = 0;
};

/// From `at` on, this is the LSTA of a system, until the next change of the same system.
struct LstaChange
{
    std::chrono::milliseconds at{};
    LstaSystem system{};
    int status = 0;
    double value = 0;
};

/// Reception of one system.
struct Reception
{
    int trackedSatellites = 0;
    double meanCarrierDbHz = 0;
};
using ReceptionOf = std::function<Reception(LstaSystem)>;

/// Derives LSTA from reception and planned changes, and decides when it is reported.
class LstaMonitor
{
public:
    /// `changes` in order of time.
    LstaMonitor(std::vector<LstaChange> changes, ReceptionOf receptionOf);

    Lsta current(LstaSystem system, bool engineOn, std::chrono::milliseconds now) const;
    /// A planned change sets status 0: no satellite of the system is received.
    bool isBlocked(LstaSystem system, std::chrono::milliseconds now) const;
    std::optional<std::chrono::milliseconds> nextChange(std::chrono::milliseconds now) const;
    /// Overrides all planned changes until an empty value takes it back. Enabled systems are checked again at once.
    void setLevel(LstaSystem system, std::optional<LstaLevel> level, std::chrono::milliseconds now);

    /// Enabled systems are checked at every full second and every planned change. A report is due when the status has
    /// changed or the value has moved by 1 dB-Hz since the last report (at first: since 0 and 0), and, while the engine
    /// is on, after `periodSeconds` if that is above 0.
    void enable(LstaSystem system, int periodSeconds, std::chrono::milliseconds now);
    void disable(LstaSystem system);
    void disableAll();
    /// By system: the period in seconds if it is enabled.
    std::array<std::optional<int>, kLstaSystems> periods() const;

    std::vector<Lsta> takeReports(bool engineOn, std::chrono::milliseconds now);
    /// When to ask for reports next; empty while no system is enabled.
    std::optional<std::chrono::milliseconds> nextLook() const { return m_nextLook; }

private:
    struct Subscription
    {
        int periodSeconds = 0;
        Lsta reported{};
        std::chrono::milliseconds reportedAt{};
    };

    std::optional<LstaLevel> levelInForce(LstaSystem system, std::chrono::milliseconds now) const;
    std::chrono::milliseconds lookAfter(std::chrono::milliseconds now) const;

    const std::vector<LstaChange> m_changes;
    const ReceptionOf m_receptionOf;
    std::array<std::optional<LstaLevel>, kLstaSystems> m_levels{};
    std::array<std::optional<Subscription>, kLstaSystems> m_subscriptions{};
    std::optional<std::chrono::milliseconds> m_nextLook{};
};

}  // namespace arcsim::modem
