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

/// Answers an application's calls with the recorded answers, and finds the first call that differs from the recording.
/// Pure logic: it neither waits nor sends anything.
///
/// The calls of one thread must come in the recorded order; the interleaving of threads does not matter. A new thread
/// replays the first free recorded thread that began with the same call, or else the first free one.
class ReplayBook
{
public:
    struct Answer
    {
        unsigned number = 0;  ///< number of the recorded call; 0 when the call was not recorded
        bool hangs = false;   ///< the recorded call never returned
        int code = 0;
        nlohmann::ordered_json outputs = nlohmann::ordered_json::object();
        std::chrono::microseconds took{};
    };

    struct Difference
    {
        unsigned call = 0;  ///< number of the recorded call; for a call beyond the recording, of the call that was made
        std::string expected{};  ///< the recorded call, ARC_StartGNSSraw(set, 255), or why there is none
        std::string got{};
    };

    struct DueEvent
    {
        std::size_t index = 0;              ///< in Recording::events
        std::chrono::microseconds delay{};  ///< how long to wait from now, as recorded
    };

    explicit ReplayBook(Recording recording);

    using ThreadId = std::uint64_t;  ///< unique among the threads of all applications

    /// The answer to the next call of a thread. After a difference, the answer comes from the recorded thread's next
    /// identical call (calls before it are skipped), else from the latest or next call of the same function; else it is
    /// 32.
    Answer next(ThreadId thread, const std::string& function, const nlohmann::ordered_json& arguments);
    /// To be called when the application has received the answer.
    void answered(unsigned number);

    /// Events that are due because the same calls have begun and ended as in the recording. Each event is given once,
    /// in order.
    std::vector<DueEvent> dueEvents();

    /// The first difference.
    const std::optional<Difference>& difference() const { return m_difference; }
    /// After the end, a recorded call that was never made is a difference too.
    std::optional<Difference> finish();

    const Recording& recording() const { return m_recording; }

private:
    struct Thread
    {
        using Positions = std::vector<std::size_t>;                                 ///< in `calls`, ascending
        std::vector<std::size_t> calls{};                                           ///< indices in the recording
        std::map<std::pair<std::string_view, std::string_view>, Positions> same{};  ///< by function and arguments
        std::map<std::string_view, Positions> answered{};  ///< by function; only calls that returned
        std::size_t next = 0;                              ///< in `calls`
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
    std::map<ThreadId, Thread*> m_replaying{};  ///< null for threads beyond the number of recorded ones
    std::optional<Difference> m_difference{};
    unsigned m_calls = 0;         ///< calls made so far
    std::vector<bool> m_begun{};  ///< by index of the call; skipped calls count too
    std::vector<bool> m_ended{};
    std::size_t m_begunSoFar = 0;  ///< how many from the first on have begun, without a gap
    std::size_t m_endedSoFar = 0;  ///< likewise for ends, in Recording::endOrder
    std::size_t m_nextEvent = 0;
};

/// The difference as a message: "no difference", or "call 7: expected ARC_Open(), got ARC_Close()".
std::string textOf(const std::optional<ReplayBook::Difference>& difference);

}  // namespace arcsim
