#pragma once

#include "arcsim/Recording.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// Answers the calls of an application as they were answered when it was recorded, and watches for the first call that
/// differs from then. Pure logic: it neither waits nor sends anything.
///
/// Calls of one thread have to come in the recorded order; how the calls of several threads interleave does not matter.
/// A thread that appears stands for the first recorded one that is still free and began with the same call, else for
/// the first free one.
class ReplayBook
{
public:
    struct Answer
    {
        unsigned number = 0;  ///< of the recorded call; 0 when the call was not recorded
        bool hangs = false;   ///< it has no end
        int code = 0;
        nlohmann::ordered_json outputs = nlohmann::ordered_json::object();
        std::chrono::microseconds took{};
    };

    struct Difference
    {
        unsigned call = 0;       ///< number of the recorded call; beyond the recorded ones, of the call that was made
        std::string expected{};  ///< what was recorded: ARC_StartGNSSraw(set, 255), or why there is nothing
        std::string got{};
    };

    struct DueEvent
    {
        std::size_t index = 0;              ///< in Recording::events
        std::chrono::microseconds delay{};  ///< how long to wait from now, as recorded
    };

    explicit ReplayBook(Recording recording);

    using ThreadId = std::uint64_t;  ///< whatever tells the threads of all applications apart

    /// The answer to the next call of a thread. After a difference it is the one of the next call of the recorded
    /// thread that is the same, skipping those before it; else that of the latest or next call of the same function;
    /// else 32.
    Answer next(ThreadId thread, const std::string& function, const nlohmann::ordered_json& arguments);
    /// The answer has been given to the application.
    void answered(unsigned number);

    /// Events whose calls have begun and ended as when they were recorded; each is given once, in order.
    std::vector<DueEvent> dueEvents();

    /// The first one.
    const std::optional<Difference>& difference() const { return m_difference; }
    /// At the end a recorded call that was never made is a difference too.
    std::optional<Difference> finish();

    const Recording& recording() const { return m_recording; }

private:
    struct Thread
    {
        using Positions = std::vector<std::size_t>;                                 ///< in `calls`, ascending
        std::vector<std::size_t> calls{};                                           ///< indices in the recording
        std::map<std::pair<std::string_view, std::string_view>, Positions> same{};  ///< by function and arguments
        std::map<std::string_view, Positions> answered{};                           ///< by function, with an end
        std::size_t next = 0;                                                       ///< in `calls`
        bool assigned = false;
    };

    Thread* threadFor(ThreadId thread, const std::string& function, const std::string& arguments);
    bool isSame(std::size_t call, const std::string& function, const std::string& arguments) const;
    static std::size_t positionOf(const Thread& thread, const std::string& function, const std::string& arguments);
    Answer take(Thread& thread, std::size_t position);
    Answer substitute(const Thread* thread, const std::string& function) const;
    const RecordedCall* substituteIn(const Thread& thread, const std::string& function) const;
    Answer answerOf(const RecordedCall& call) const;
    void note(unsigned call, std::string expected, std::string got);

    Recording m_recording;
    std::map<int, Thread> m_recorded{};
    std::map<ThreadId, Thread*> m_replaying{};  ///< of as many as were recorded; further ones stand for none
    std::optional<Difference> m_difference{};
    unsigned m_calls = 0;         ///< made so far
    std::vector<bool> m_begun{};  ///< by index of the call; those skipped count too
    std::vector<bool> m_ended{};
    std::size_t m_begunSoFar = 0;  ///< so many from the first on, without a gap
    std::size_t m_endedSoFar = 0;  ///< likewise, of Recording::endOrder
    std::size_t m_nextEvent = 0;
};

/// For people: "no difference", or "call 7: expected ARC_Open(), got ARC_Close()".
std::string textOf(const std::optional<ReplayBook::Difference>& difference);

}  // namespace arcsim
