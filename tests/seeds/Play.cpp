#include "seeds/Play.h"

#include "kelarc/idle.h"
#include "seeds/Reader.h"
#include "sim/client/ArcSim.h"
#include "sim/held_clock.h"

#include <cstdio>
#include <cstdlib>

namespace seeds {
namespace {

using Kind = Step::Kind;
using Seen = Entry::Kind;

std::string dataText(const void* data, int length)
{
    if (data == nullptr)
        return "null";
    std::string text;
    for (int i = 0; i < length; ++i) {
        char digits[3] = {};
        std::snprintf(digits, sizeof digits, "%02x", unsigned{static_cast<const unsigned char*>(data)[i]});
        text += digits;
    }
    return text.empty() ? "nothing" : text;
}

}  // namespace

Play::Play(const Program& program) : m_program(program), m_daemon(Daemon::socketOfThisProcess(), program.hasLatencies)
{
    arcsim::reset();  // what this process remembers of an earlier daemon
    m_daemon.control("latencies", program.hasLatencies ? R"("on":true)" : R"("on":false)");
    make();
}

void Play::make()
{
    m_kelarc = std::make_unique<kelarc::KelArc>([this](int level, const char* line) { m_stage.line(level, line); });
}

Outcome Play::run()
{
    for (const Phase& phase : m_program.phases)
        play(phase);
    finish();
    m_outcome.entries = m_stage.entries();
    return std::move(m_outcome);
}

void Play::play(const Phase& phase)
{
    m_phase = &phase;
    m_nextLater = 0;
    m_moment = 0;
    settle();
    if (phase.isHeld)
        hold();
    {
        const auto clock = phase.isOneMoment ? std::make_unique<host_test::HeldClock>() : nullptr;
        m_oneMoment = phase.isOneMoment ? ++m_lastOneMoment : 0;
        for (const Step& step : phase.first)
            perform(step);
        m_oneMoment = 0;
    }
    runUntilIdle();
    while (m_nextLater < phase.later.size()) {  // for which the worker called back too seldom
        perform(phase.later[m_nextLater++].step);
        runUntilIdle();
    }
}

void Play::hold()
{
    Step step;
    step.request.operation = operationNamed("getArcVersion");
    request(own(step));
    requireProgress();
    while (!m_stage.isMoment())
        requireProgress();
}

void Play::runUntilIdle()
{
    m_lastProgress = std::chrono::steady_clock::now();
    while (!isIdle()) {
        if (m_stage.isMoment()) {
            moment();
            m_lastProgress = std::chrono::steady_clock::now();
        } else if (m_isDestroyed) {
            finishDestroying();
        } else if (!m_hangs.empty() && m_daemon.isServing() && m_daemon.control("status")["hanging"] > 0) {
            answerHang();
        }
        requireProgress();
    }
    settle();
    m_stage.note({Seen::idle, true});
}

bool Play::isIdle()
{
    return !m_destroyer.joinable() && kelarc::isIdle(*m_kelarc);
}

/// A run that stands still for ever tells what it was doing.
void Play::requireProgress()
{
    constexpr std::chrono::seconds kLimit{120};
    if (m_lastProgress == std::chrono::steady_clock::time_point{})
        m_lastProgress = std::chrono::steady_clock::now();
    if (std::chrono::steady_clock::now() - m_lastProgress < kLimit)
        return;
    std::fprintf(stderr, "The run stands still.\n%s", wordsOf(m_program).c_str());
    std::abort();
}

void Play::moment()
{
    ++m_moment;
    const Seen seen = m_stage.entries().back().kind;
    if (seen == Seen::pause)
        afterPause();
    else if (seen == Seen::answer)
        m_pauses = 0;
    const auto& later = m_phase->later;
    if (m_nextLater < later.size() && later[m_nextLater].moment <= m_moment && !m_destroyer.joinable())
        settle();
    while (m_nextLater < later.size() && later[m_nextLater].moment <= m_moment && !m_destroyer.joinable())
        perform(later[m_nextLater++].step);
    if (m_destroyer.joinable())
        unlisten();
    else
        look();
    m_stage.release();
}

void Play::afterPause()
{
    constexpr int kMost = 35;
    if (!m_daemon.isServing() && --m_servedAfter < 0)
        serve();
    else if (m_daemon.isServing())
        pass(250);
    if (++m_pauses < kMost || !m_daemon.isServing() || m_isOutage)
        return;
    Step step;
    step.kind = Kind::rescue;
    perform(own(step));
    m_pauses = 0;
}

void Play::look()
{
    const std::string count = std::to_string(m_kelarc->getPendingTasks());
    const std::string all = m_kelarc->tasksToString();
    if (all.compare(0, 13 + count.size(), "All tasks (" + count + "):") != 0)
        m_outcome.problems.push_back(count + " tasks wait, and tasksToString() begins with " + all.substr(0, 20));
    m_stage.note({Seen::look, false, count + " wait, " + m_kelarc->getRunningTaskName()});
}

void Play::answerHang()
{
    const Step& hang = *m_hangs.front();
    m_hangs.pop_front();
    m_stage.note({Seen::hang, true});
    Step end;
    end.count = hang.count;
    end.number = hang.number;
    switch (hang.release) {
    case Step::Release::clear:
        end.kind = Kind::clear;
        break;
    case Step::Release::kill:
        end.kind = Kind::kill;
        break;
    case Step::Release::outage:
        end.kind = Kind::outage;
        break;
    case Step::Release::reset:
        end.kind = Kind::reset;
        break;
    }
    perform(own(end));
}

/// Waits until everything that was sent to this process has arrived, be it an event or the end of a connection.
void Play::settle()
{
    // The first one may be lost with a connection that has ended, or find that there is none.
    ARC_GetArcVersion();
    ARC_GetArcVersion();
    constexpr int kNoEvent = 9999;
    arcsim::deliverEvent(kNoEvent, nullptr, 0);  // comes behind all others
    m_stage.takeEvents();
}

void Play::request(const Step& step)
{
    const int number = static_cast<int>(m_receipts.size());
    const auto answered = std::make_shared<const Receipt::Answered>(
        [this, number](const std::string& text) { m_stage.answered(number, text); });
    m_receipts.emplace_back(answered);
    Listeners listeners;
    if (step.request.value == kListener) {
        const std::string name = "listener " + std::to_string(number) + ": ";
        listeners.notified = [this, name](kelarc::NOTIFY_ID id, void* data, int length) {
            m_stage.event(name + support::describe(id) + ", " + dataText(data, length));
        };
        listeners.lstaChanged = [this, name](kelarc::lsta::TYPE type, int status, double value) {
            m_stage.event(name + "lsta " + support::describe(type) + ", " + std::to_string(status) + ", " +
                          std::to_string(value));
        };
    }
    m_stage.note({Seen::step, false, wordsOf(step), number, m_oneMoment, &step});
    operations()[step.request.operation].ask(*m_kelarc, step.request, Receipt(answered), std::move(listeners));
}

void Play::finish()
{
    if (!m_daemon.isServing())
        serve();
    Step clear;
    clear.kind = Kind::clear;
    perform(own(clear));
    pass(5000);  // longer than an outage
    Step close;
    close.request.operation = operationNamed("close");
    perform(own(close));
    runUntilIdle();
    if (!kelarc::waitUntilIdle(*m_kelarc, std::chrono::seconds(0)))
        m_outcome.problems.emplace_back("the worker is not idle at the end");
    unlisten();
    m_kelarc.reset();
    for (std::size_t i = 0; i < m_receipts.size(); ++i)
        if (!m_receipts[i].expired())
            m_outcome.problems.push_back("the callback of request " + std::to_string(i) + " is still held");
    arcsim::reset();
}

}  // namespace seeds
