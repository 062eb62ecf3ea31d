#include "kelarcctl/monitor/Collector.h"

#include "kelarcctl/LstaSystems.h"
#include "kelarcctl/Settings.h"
#include "kelarcctl/monitor/Format.h"

#include <algorithm>
#include <utility>

namespace kelarcctl {

namespace {

using kelarc::lsta::TYPE;

constexpr long long kStartAgainMs = 1000;  // a terminal that disappears at once is not requested again without a pause
constexpr std::size_t kMostWaiting = 40;   // the library silently drops requests from 128 on
constexpr int kMostBytesShown = 32;

}  // namespace

Collector::Collector(kelarc::KelArc& modem, std::shared_ptr<Inbox> inbox, Model& model,
                     std::chrono::milliseconds timeout, std::function<void(const Json&)> tell)
    : m_modem(modem), m_inbox(std::move(inbox)), m_model(model), m_timeout(timeout), m_tell(std::move(tell))
{
    for (const Setting& setting : settings())  // the rows have the same order
        m_model.settings.push_back({setting.command, setting.key, setting.unit, setting.accepted});
    for (const kelarc::lsta::System& system : kLstaSystems)
        m_model.lsta.push_back({wordOf(system)});
}

void Collector::answered(std::uint64_t id)
{
    auto& waiting = m_model.waiting;
    waiting.erase(std::remove_if(waiting.begin(), waiting.end(), [&](const Waiting& each) { return each.id == id; }),
                  waiting.end());
}

bool Collector::isOverburdened()
{
    const bool isIt = m_model.waiting.size() >= kMostWaiting;
    if (isIt)
        m_model.setNotice(Style::bad, "not sent: too many requests are without an answer");
    return isIt;
}

void Collector::open()
{
    ask<int>(
        "opening the modem", [&](auto callback) { m_modem.open(std::move(callback)); },
        [this](int code) { opened(code); });
}

/// As the guide says: the modem or client library may have forgotten every earlier request, so all are repeated.
void Collector::openAgain()
{
    m_isOpen = false;
    if (m_model.output == RawOutput::running)
        m_model.output = RawOutput::starting;
    forgetWhatMayVanish();
    ask<int>(
        "closing the modem", [&](auto callback) { m_modem.close(std::move(callback)); }, [this](int) { open(); });
}

void Collector::forgetWhatMayVanish()
{
    auto& waiting = m_model.waiting;
    waiting.erase(std::remove_if(waiting.begin(), waiting.end(), [](const Waiting& each) { return each.mayVanish; }),
                  waiting.end());
}

void Collector::listen()
{
    m_modem.setNotificationCB([inbox = m_inbox](kelarc::NOTIFY_ID id, void* data, int length) {
        const auto* const bytes = static_cast<const char*>(data);
        const std::string start =
            bytes == nullptr ? "" : std::string(bytes, bytes + std::clamp(length, 0, kMostBytesShown));
        inbox->postNews([id, length, start](Collector& collector) { collector.notified(id, length, start); });
    });
}

void Collector::opened(int code)
{
    m_isOpen = m_modem.isOpen();
    if (!m_isOpen) {
        m_model.setNotice(Style::bad, "the modem was not opened: " + refusal(code));
        return;
    }
    m_model.link = Link::open;
    m_model.linkSinceMs = m_model.nowMs;
    tell({{"type", "link"}, {"state", "open"}});
    setUp();
}

void Collector::setUp()
{
    listen();
    readVersions();
    for (std::size_t i = 0; i < m_model.lsta.size(); ++i)
        m_modem.setLstaGnssStatus(
            kLstaSystems[i].tech, true, 0,
            [inbox = m_inbox](TYPE type, int status, double value) {
                inbox->postNews([=](Collector& collector) { collector.lstaChanged(type, status, value); });
            },
            [inbox = m_inbox, i](int code) {
                inbox->post([=](Collector& collector) {
                    collector.m_model.setNotice(Style::bad, "no reports of the LSTA of " +
                                                                collector.m_model.lsta[i].system + ": " +
                                                                collector.refusal(code));
                });
            });
    read();
    requestOutput();
}

void Collector::startOutput()
{
    if (isOverburdened())
        return;
    m_wantsOutput = true;
    m_model.setNotice(Style::plain, "starting the output");
    if (m_model.output == RawOutput::running)  // other programs may have stopped the output
        m_model.output = RawOutput::starting;
    requestOutput();
}

void Collector::requestOutput()
{
    if (!m_isOpen || !m_wantsOutput || m_isStarting || m_model.output == RawOutput::running)
        return;
    m_isStarting = true;
    m_model.output = RawOutput::starting;
    ask<int, std::string>(
        "starting the output", [&](auto callback) { m_modem.startRawGNSS(std::move(callback)); },
        [this](int code, const std::string& path) { outputStarted(code, path); });
}

void Collector::outputStarted(int code, const std::string& path)
{
    m_isStarting = false;
    m_nextStartMs = m_model.nowMs + kStartAgainMs;
    if (code != 0 || !m_wantsOutput) {  // or a stop came in between
        m_model.output = m_wantsOutput ? RawOutput::starting : RawOutput::off;
        return;
    }
    m_model.output = RawOutput::running;
    m_model.device = path;
    m_model.lastSentenceMs = m_model.nowMs;
    m_newDevice = path;
    tell({{"type", "output"}, {"state", "running"}, {"path", path}});
}

void Collector::deviceLost(bool wasRead)
{
    if (m_model.output == RawOutput::off)
        return;
    event(Style::bad, "the terminal with the sentences is gone");
    tell({{"type", "output"}, {"state", "lost"}});
    m_model.output = RawOutput::starting;
    m_nextStartMs = m_model.nowMs + (wasRead ? 0 : kStartAgainMs);
    if (wasRead && m_isOpen)  // the RIL daemon may have died and restarted
        openAgain();
}

void Collector::stopOutput()
{
    if (!m_isOpen || isOverburdened())
        return;
    m_wantsOutput = false;
    m_model.output = RawOutput::off;
    forgetWhatMayVanish();
    tell({{"type", "output"}, {"state", "off"}});
    ask<int>(
        "stopping the output", [&](auto callback) { m_modem.stopGNSS(std::move(callback)); },
        [this](int code) {
            m_model.setNotice(code == 0 ? Style::good : Style::bad,
                              code == 0 ? "the output is off" : "the modem refused to stop: " + refusal(code));
        });
}

/// Only the first request is judged; the others merely wait for their turn.
void Collector::findOverdue()
{
    if (m_model.waiting.empty())
        return;
    Waiting& front = m_model.waiting.front();
    if (front.id != m_frontId) {
        m_frontId = front.id;
        m_frontSinceMs = m_model.nowMs;
    }
    if (front.isOverdue || m_model.nowMs - m_frontSinceMs < m_timeout.count())
        return;
    front.isOverdue = true;
    result(Style::bad, "no answer within " + ageText(m_timeout.count()) + ": " + front.what);
    tell({{"type", "overdue"}, {"request", front.what}, {"afterMs", m_timeout.count()}});
}

void Collector::tick()
{
    findOverdue();
    if (m_model.nowMs >= m_nextStartMs)
        requestOutput();
    if (m_isOpen && m_model.waiting.empty() && m_model.nowMs >= m_nextReadMs)
        read();
    m_model.queued = m_modem.getPendingTasks();  // read before the running task, as kelarc/idle.h explains; otherwise a
                                                 // task could be missed
    const std::uint32_t running = m_modem.getRunningTaskId();
    m_model.runningTask = running == 0 ? "" : m_modem.getRunningTaskName();
    m_model.lost = m_inbox->lost();
    if (running == m_listedTask && m_model.queued == m_listedCount)
        return;
    m_listedTask = running;
    m_listedCount = m_model.queued;
    m_model.queuedTasks = queuedTasksOf(m_modem.tasksToString());
}

}  // namespace kelarcctl
