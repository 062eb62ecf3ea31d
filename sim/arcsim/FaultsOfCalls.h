#pragma once

#include "arcsim/Recording.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace arcsim {

/// The most elements that a scenario accepts in a list, unless the list says otherwise.
inline constexpr std::size_t kMostElements = 10000;

/// A duration as scenarios write it: rounded, 0 up to a day.
long long scenarioMs(std::chrono::microseconds time);

/// The faults that make a simulated modem answer as the recorded one did, in the order of their first occurrence.
class FaultsOfCalls
{
public:
    void add(const RecordedCall& call);
    nlohmann::ordered_json take() { return std::move(m_faults); }
    /// How many faults did not fit.
    unsigned leftOut() const { return m_leftOut; }

private:
    /// Consecutive calls of one function that failed in the same way.
    struct Failures
    {
        unsigned first = 0;
        unsigned count = 0;
        int code = 0;
        std::chrono::microseconds took{};  ///< sum over these calls
        std::size_t index = 0;             ///< index in the list; kNowhere: left out
    };
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

    std::size_t push(nlohmann::ordered_json fault);
    void addFailure(const RecordedCall& call, unsigned number, int code, bool isLong);
    static nlohmann::ordered_json faultOf(const std::string& function, const Failures& failures);

    std::map<std::string, unsigned> m_counts{};
    std::map<std::string, Failures> m_open{};
    nlohmann::ordered_json m_faults = nlohmann::ordered_json::array();
    unsigned m_leftOut = 0;
};

}  // namespace arcsim
