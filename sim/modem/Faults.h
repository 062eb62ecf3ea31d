#pragma once

#include "modem/Reply.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace arcsim::modem {

/// How long a call takes: fixed, uniformly distributed between two times, or normally distributed.
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
    /// The latency of the `number`-th call of a request; the same for the same seed.
    std::chrono::milliseconds of(std::uint64_t seed, std::size_t request, unsigned number) const;
};

/// The effect on one call. Fields that are not set leave the usual behaviour.
struct FaultEffect
{
    std::optional<int> code{};                           ///< this result code, without asking the modem
    std::optional<std::chrono::milliseconds> latency{};  ///< instead of the usual one
    bool hangs = false;                                  ///< the call does not return
    std::optional<int> indicator{};                      ///< LSTA indicator instead of the system's own
    std::optional<std::size_t> replyLength{};            ///< texts are padded to this many characters
    bool withoutQuotes = false;                          ///< texts lose their double quotes
};

/// A fault in some calls of one request. All conditions that are set must hold.
struct Fault
{
    std::size_t request = 0;                           ///< index in kRequests
    std::optional<unsigned> firstCall{};               ///< counted from 1
    unsigned callCount = 1;                            ///< how many calls from `firstCall` on
    std::optional<std::chrono::milliseconds> from{};   ///< scenario time, included
    std::optional<std::chrono::milliseconds> until{};  ///< scenario time, excluded
    std::optional<unsigned> times{};                   ///< used up after this many calls

    std::optional<int> code{};
    std::optional<Latency> latency{};
    bool hangs = false;
    std::optional<int> indicator{};
    std::optional<std::size_t> replyLength{};
    bool withoutQuotes = false;
};

/// Decides which faults apply to which call, from the faults of the scenario and those injected while it runs.
///
/// Injected faults come first, the latest before the others; then those of the scenario as listed. When several apply
/// to a call, later faults fill only the fields that earlier ones left unset; each counts as used once.
class FaultPlan
{
public:
    FaultPlan(std::uint64_t seed, std::vector<Fault> faults);

    /// Injects a fault. Its call numbers count from `callsSoFar`, the number of calls of its request so far.
    void inject(Fault fault, unsigned callsSoFar);
    /// Drops the injected faults, of one request or all.
    void clearInjected(std::optional<std::size_t> request = std::nullopt);
    /// Injected faults that are not used up, the latest first, with absolute call numbers.
    std::vector<Fault> injected() const;

    /// The effect on the `number`-th call of `request` that begins at `now`; counts the uses of faults.
    FaultEffect take(std::size_t request, unsigned number, std::chrono::milliseconds now);
    /// The next moment after `now` at which a fault of the scenario starts or stops applying.
    std::optional<std::chrono::milliseconds> nextEdge(std::chrono::milliseconds now) const;

private:
    struct Entry
    {
        Fault fault{};
        unsigned used = 0;

        /// Used up by `times`, or by the calls that it counts.
        bool isUsedUp() const;
    };
    /// Drops injected faults that no longer apply, so that a long run with many faults stays fast.
    void forgetUsedUp(std::chrono::milliseconds now);

    std::uint64_t m_seed;
    std::vector<Entry> m_injected{};  ///< the latest first
    std::vector<Entry> m_planned{};
};

/// The reply after the effect's indicator, length and removal of quotes. A longer text is padded with 'x' before a
/// closing quote, or else at its end.
Reply distorted(Reply reply, const FaultEffect& effect);

}  // namespace arcsim::modem
