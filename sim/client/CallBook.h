#pragma once

#include "client/ArcSim.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace arcsim {

/// Remembers the latest calls and picks the scripted answer of each. All functions may be called from any thread.
class CallBook
{
public:
    struct Entry
    {
        unsigned number = 0;
        std::optional<Answer> answer{};
    };

    /// Records a call of the calling thread and takes its scripted answer in one step, so two threads never get the
    /// same answer.
    Entry enter(Function function, std::vector<std::string> arguments);

    void answerCall(Function function, unsigned number, Answer answer);
    void answerNext(Function function, std::vector<Answer> answers);
    void answerAlways(Function function, Answer answer);
    void clearAnswers(Function function);
    /// Forgets all calls and scripts.
    void clear();

    std::vector<Call> calls() const;
    bool waitForCalls(Function function, unsigned count, std::chrono::milliseconds limit) const;

private:
    struct Script
    {
        std::map<unsigned, Answer> byNumber{};
        std::deque<Answer> next{};
        std::optional<Answer> always{};

        std::optional<Answer> take(unsigned number);
    };

    // all guarded by m_mutex
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_called;
    std::vector<Call> m_calls;  ///< the latest kKeptCalls, then used as a ring
    std::size_t m_oldest = 0;   ///< in m_calls
    std::array<unsigned, kFunctions> m_counts{};
    std::array<Script, kFunctions> m_scripts{};
};

}  // namespace arcsim
