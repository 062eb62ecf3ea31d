#pragma once

#include "modem/Reply.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace arcsim::modem {

/// How long a call takes: always the same, evenly spread between two times, or normally distributed.
struct Latency
{
    enum class Shape
    {
        even,    ///< from `a` to `b`, both included; the same when they are equal
        normal,  ///< mean `a`, standard deviation `b`, never below 0
    };
    Shape shape = Shape::even;
    std::chrono::milliseconds a{};
    std::chrono::milliseconds b{};

    static Latency fixed(std::chrono::milliseconds time) { return {Shape::even, time, time}; }
    /// Of the `number`-th call of a request; the same for the same seed.
    std::chrono::milliseconds of(std::uint64_t seed, std::size_t request, unsigned number) const;
};

/// What happens to one call. What is not set goes its usual way.
struct FaultEffect
{
    std::optional<int> code{};                           ///< the modem is not asked
    std::optional<std::chrono::milliseconds> latency{};  ///< instead of the usual one
    bool hangs = false;                                  ///< the call does not come back
    std::optional<int> indicator{};                      ///< LSTA indicator instead of the system's own
    std::optional<std::size_t> replyLength{};            ///< texts are padded to this many characters
    bool withoutQuotes = false;                          ///< texts lose their double quotes
};

/// What goes wrong with some calls of one request. Every condition that is set has to hold.
struct Fault
{
    std::size_t request = 0;                           ///< index in kRequests
    std::optional<unsigned> firstCall{};               ///< counted from 1
    unsigned callCount = 1;                            ///< how many calls from `firstCall` on
    std::optional<std::chrono::milliseconds> from{};   ///< scenario time, included
    std::optional<std::chrono::milliseconds> until{};  ///< scenario time, excluded
    std::optional<unsigned> times{};                   ///< after so many calls it is used up

    std::optional<int> code{};
    std::optional<Latency> latency{};
    bool hangs = false;
    std::optional<int> indicator{};
    std::optional<std::size_t> replyLength{};
    bool withoutQuotes = false;
};

/// Decides what goes wrong with which call: by the faults of the scenario and those injected while it runs.
///
/// The injected ones go first, the latest before the others; then those of the scenario as listed. When several apply
/// to a call, later faults fill only the fields that earlier ones left unset; each counts as used once.
class FaultPlan
{
public:
    FaultPlan(std::uint64_t seed, std::vector<Fault> faults);

    /// `callsSoFar` of the fault's request: its own numbers count from there.
    void inject(Fault fault, unsigned callsSoFar);
    /// Drops the injected faults, of one request or all.
    void clearInjected(std::optional<std::size_t> request = std::nullopt);
    /// Injected faults that are not used up, the latest first; numbers as absolute ones.
    std::vector<Fault> injected() const;

    /// What happens to the `number`-th call of `request` that begins at `now`; counts the faults' times.
    FaultEffect take(std::size_t request, unsigned number, std::chrono::milliseconds now);
    /// The next moment after `now` at which a fault of the scenario begins or ends to apply.
    std::optional<std::chrono::milliseconds> nextEdge(std::chrono::milliseconds now) const;

private:
    struct Entry
    {
        Fault fault{};
        unsigned used = 0;

        /// By its times, or by as many calls as it counts.
        bool isUsedUp() const;
    };
    /// Drops injected faults that will not apply any more, so that a long run with many of them stays quick.
    void forgetUsedUp(std::chrono::milliseconds now);

    std::uint64_t m_seed;
    std::vector<Entry> m_injected{};  ///< the latest first
    std::vector<Entry> m_planned{};
};

/// The reply as it arrives: with the indicator, the length and without the quotes, as the effect says. A text that gets
/// longer is padded with 'x' before a closing quote, or else at its end.
Reply distorted(Reply reply, const FaultEffect& effect);

}  // namespace arcsim::modem
