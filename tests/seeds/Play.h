#pragma once

#include "seeds/Daemon.h"
#include "seeds/Stage.h"

#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace seeds {

/// What the run of a program has left.
struct Outcome
{
    std::vector<Entry> entries{};
    std::deque<Step> ownSteps{};          ///< of the test itself; entries refer to them
    std::vector<std::string> problems{};  ///< what was seen at once to be wrong
};

/// Does what a program says, to an object of the library, the client library of this process and a daemon.
class Play
{
public:
    explicit Play(const Program& program);
    Outcome run();

private:
    void play(const Phase& phase);
    void runUntilIdle();
    void moment();
    bool isIdle();
    void answerHang();
    void afterPause();
    void look();

    void perform(const Step& step);
    void performOnModem(const Step& step);
    void request(const Step& step);
    void hold();
    void kill(const Step& step);
    void serve();
    void read(int epochs, bool isKilledMeanwhile);
    void otherClient(int deed);
    void pass(int ms);
    void destroy(const Step& step);
    void finishDestroying();
    void finish();

    void settle();
    void unlisten();
    void make();
    bool isOutput();
    void requireProgress();
    const Step& own(Step step) { return m_outcome.ownSteps.emplace_back(std::move(step)); }

    const Program& m_program;
    Outcome m_outcome{};
    Daemon m_daemon;
    Stage m_stage{};
    std::unique_ptr<kelarc::KelArc> m_kelarc{};
    std::vector<std::weak_ptr<const Receipt::Answered>> m_receipts{};

    const Phase* m_phase = nullptr;
    std::size_t m_nextLater = 0;
    int m_moment = 0;     ///< of the phase
    int m_oneMoment = 0;  ///< of the clock, while it stands
    int m_lastOneMoment = 0;
    int m_pauses = 0;                   ///< since the last answer
    int m_servedAfter = 0;              ///< so many pauses
    bool m_isOutage = false;            ///< there was one, and it may go on
    std::deque<const Step*> m_hangs{};  ///< that may come
    std::chrono::steady_clock::time_point m_lastProgress{};

    std::thread m_destroyer{};
    std::atomic<bool> m_isDestroyed{false};
};

}  // namespace seeds
