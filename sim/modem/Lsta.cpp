#include "modem/Lsta.h"

#include <algorithm>
#include <cmath>

namespace arcsim::modem {

using std::chrono::milliseconds;

std::optional<LstaSystem> lstaSystemOf(int technologyId)
{
    if (technologyId < kFirstTechnologyId || technologyId >= kFirstTechnologyId + static_cast<int>(kLstaSystems))
        return std::nullopt;
    return static_cast<LstaSystem>(technologyId - kFirstTechnologyId);
}

LstaMonitor::LstaMonitor(std::vector<LstaChange> changes, ReceptionOf receptionOf)
    : m_changes(std::move(changes)), m_receptionOf(std::move(receptionOf))
{
}

std::optional<LstaLevel> LstaMonitor::levelInForce(LstaSystem system, milliseconds now) const
{
    std::optional<LstaLevel> level = m_levels[static_cast<std::size_t>(system)];
    if (level)
        return level;
    for (const LstaChange& change : m_changes)
        if (change.system == system && change.at <= now)
            level = {change.status, change.value};
    return level;
}

Lsta LstaMonitor::current(LstaSystem system, bool engineOn, milliseconds now) const
{
    const int indicator = kFirstIndicator + static_cast<int>(system);
    if (const auto level = levelInForce(system, now))
        return {indicator, level->status, level->value};
    if (!engineOn)
        return {indicator, 0, 0};
    const Reception reception = m_receptionOf(system);
    if (reception.trackedSatellites == 0)
        return {indicator, 0, 0};
    return {indicator, 1, reception.meanCarrierDbHz};
}

bool LstaMonitor::isBlocked(LstaSystem system, milliseconds now) const
{
    const auto level = levelInForce(system, now);
    return level && level->status == 0;
}

void LstaMonitor::setLevel(LstaSystem system, std::optional<LstaLevel> level, milliseconds now)
{
    m_levels[static_cast<std::size_t>(system)] = level;
    if (m_nextLook)
        m_nextLook = now;
}

std::optional<milliseconds> LstaMonitor::nextChange(milliseconds now) const
{
    const auto next = std::find_if(m_changes.begin(), m_changes.end(), [&](const auto& each) { return each.at > now; });
    return next == m_changes.end() ? std::nullopt : std::optional(next->at);
}

void LstaMonitor::enable(LstaSystem system, int periodSeconds, milliseconds now)
{
    m_subscriptions[static_cast<std::size_t>(system)] = Subscription{periodSeconds, {}, now};
    if (!m_nextLook)
        m_nextLook = lookAfter(now);
}

void LstaMonitor::disable(LstaSystem system)
{
    m_subscriptions[static_cast<std::size_t>(system)].reset();
    if (std::none_of(m_subscriptions.begin(), m_subscriptions.end(), [](const auto& each) { return each.has_value(); }))
        m_nextLook.reset();
}

void LstaMonitor::disableAll()
{
    m_subscriptions = {};
    m_nextLook.reset();
}

std::array<std::optional<int>, kLstaSystems> LstaMonitor::periods() const
{
    std::array<std::optional<int>, kLstaSystems> periods{};
    for (std::size_t index = 0; index < kLstaSystems; ++index)
        if (m_subscriptions[index])
            periods[index] = m_subscriptions[index]->periodSeconds;
    return periods;
}

milliseconds LstaMonitor::lookAfter(milliseconds now) const
{
    const milliseconds fullSecond = std::chrono::floor<std::chrono::seconds>(now) + std::chrono::seconds(1);
    return std::min(fullSecond, nextChange(now).value_or(fullSecond));
}

std::vector<Lsta> LstaMonitor::takeReports(bool engineOn, milliseconds now)
{
    std::vector<Lsta> reports;
    if (!m_nextLook || now < *m_nextLook)
        return reports;
    m_nextLook = lookAfter(now);
    for (std::size_t index = 0; index < kLstaSystems; ++index) {
        auto& subscription = m_subscriptions[index];
        if (!subscription)
            continue;
        const Lsta lsta = current(static_cast<LstaSystem>(index), engineOn, now);
        const bool moved =
            lsta.status != subscription->reported.status || std::abs(lsta.value - subscription->reported.value) >= 1;
        const bool periodOver = engineOn && subscription->periodSeconds > 0 &&
                                now - subscription->reportedAt >= std::chrono::seconds(subscription->periodSeconds);
        if (!moved && !periodOver)
            continue;
        subscription->reported = lsta;
        subscription->reportedAt = now;
        reports.push_back(lsta);
    }
    return reports;
}

}  // namespace arcsim::modem
