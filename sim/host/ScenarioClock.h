#pragma once

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

namespace arcsim {

/// Scenario time: milliseconds since the first call of the application, and 0 before it.
///
/// Real time goes on by itself. Virtual time stands still until it is advanced, so nothing waits for it and a scenario
/// takes the same course on every machine.
class ScenarioClock
{
public:
    using Real = std::chrono::steady_clock;
    enum class Mode
    {
        real,
        virtualTime,
    };

    explicit ScenarioClock(Mode mode) : m_mode(mode) {}

    bool isVirtual() const { return m_mode == Mode::virtualTime; }
    bool hasBegun() const { return m_begin.has_value(); }
    void begin()
    {
        if (!m_begin)
            m_begin = Real::now();
    }
    /// Begins as if the first call had come that long ago.
    void resume(std::chrono::milliseconds ago)
    {
        m_begin = Real::now() - ago;
        m_virtual = ago;
    }

    std::chrono::milliseconds now() const
    {
        if (!m_begin)
            return std::chrono::milliseconds(0);
        if (isVirtual())
            return m_virtual;
        return std::chrono::duration_cast<std::chrono::milliseconds>(Real::now() - *m_begin);
    }
    /// Advances the time, never back. Virtual time only.
    void advanceTo(std::chrono::milliseconds time) { m_virtual = std::max(m_virtual, time); }
    /// The real time of a scenario time. Only for real time that has begun.
    Real::time_point realTimeOf(std::chrono::milliseconds time) const { return *m_begin + time; }

private:
    Mode m_mode;
    std::optional<Real::time_point> m_begin{};
    std::chrono::milliseconds m_virtual{0};
};

/// Reads "virtual", "real" or an empty text, which means real. Throws ScenarioError, which names `origin`, for any
/// other text.
ScenarioClock::Mode modeOf(const std::string& origin, const std::string& word);
/// The mode that the environment variable ARCSIM_TIME names.
ScenarioClock::Mode modeOfEnvironment();

}  // namespace arcsim
