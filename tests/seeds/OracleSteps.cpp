// How each step of a test changes the library, according to the contract.

#include "seeds/Oracle.h"

#include <array>

namespace seeds {
namespace {

using Kind = Step::Kind;
using Seen = Entry::Kind;

constexpr std::size_t kMostWaitingTasks = 128;

/// The identity by which the library notifies of an event of the modem; 0: it does not.
int notifiedOf(int event)
{
    switch (event) {
    case 22:
        return 1;
    case 72:
        return 3;
    case 73:
        return 5;
    case 74:
        return 4;
    case 75:
        return 6;
    default:
        return 0;
    }
}

/// Of an LSTA system: the client library's number, and what the log says when nobody listens.
struct Silent
{
    int technology;
    const char* line;
};
constexpr std::array<Silent, 4> kSilent{{
    {10, "4 KelArc::notifyLsta.1263: No callback defined for GPS LSTA notifications!"},
    {11, "4 KelArc::notifyLsta.1276: No callback defined for Glonass LSTA notifications!"},
    {12, "4 KelArc::notifyLsta.1302: No callback defined for BeiDou LSTA notifications!"},
    {13, "4 KelArc::notifyLsta.1289: No callback defined for Galileo LSTA notifications!"},
}};

bool begins(const std::string& text, const std::string& with)
{
    return text.compare(0, with.size(), with) == 0;
}

}  // namespace

void Oracle::apply(const Entry& entry)
{
    switch (entry.kind) {
    case Seen::step:
        apply(*entry.step, entry);
        break;
    case Seen::event:
        event(entry);
        break;
    case Seen::look:
        look(entry);
        break;
    case Seen::unlisten:
        m_modem.unlisten();
        break;
    case Seen::passed:
        m_modem.passed(entry.request);
        break;
    case Seen::served:
        m_modem.served();
        break;
    default:
        --m_next;
        fail("nothing of the kind on the caller's thread");
    }
}

void Oracle::apply(const Step& step, const Entry& entry)
{
    if (step.kind == Kind::request) {
        request(step, entry);
    } else if (step.kind == Kind::destroy) {
        m_isActive = false;
        m_isEnding = true;
    } else {
        m_modem.apply(step);
        if (step.kind == Kind::events)
            requireEvents(step);
    }
}

void Oracle::request(const Step& step, const Entry& entry)
{
    const Operation& operation = operations()[step.request.operation];
    const Demand demand = operation.demand(step.request);
    const std::string name = operation.name;
    ++m_counts.requests;
    if (demand.line)
        takeOwn(Seen::line, *demand.line, 0);
    if (demand.answer)
        takeOwn(Seen::answer, *demand.answer, entry.request);
    const bool isListened = step.request.value == kListener;
    if (name == "open" && (m_isActive || m_isOpen))
        return;
    if (name == "close" || name == "stopGNSS")
        m_isActive = false;
    if (name == "close" && !m_isOpen)
        return;
    if (name == "setNotificationCB")
        m_notified = isListened ? entry.request : -1;
    if (name == "setLstaGnssStatus" && !demand.tasks.empty())
        m_lstaListeners[9 + step.request.number] = isListened ? entry.request : -1;
    for (const Task& task : demand.tasks)
        queue(task, entry);
}

/// Of requests at one reading of the clock the later one goes first.
void Oracle::queue(const Task& task, const Entry& entry)
{
    if (m_waiting.size() >= kMostWaitingTasks) {
        ++m_counts.dropped;
        return;
    }
    auto place = m_waiting.end();
    while (entry.moment != 0 && place != m_waiting.begin() && (place - 1)->moment == entry.moment)
        --place;
    m_waiting.insert(place, {task, entry.request, entry.moment});
}

void Oracle::event(const Entry& entry)
{
    const auto expect = [&](bool isRight, const std::string& what) {
        if (!isRight) {
            --m_next;
            fail(what);
        }
    };
    expect(m_notified >= 0, "no event while nobody listens");
    for (const Silent& silent : kSilent)
        if (entry.text == silent.line) {
            const auto listener = m_lstaListeners.find(silent.technology);
            expect(listener == m_lstaListeners.end() || listener->second < 0, "an LSTA for the one who listens");
            return;
        }
    for (const auto& [technology, listener] : m_lstaListeners)
        if (begins(entry.text,
                   "listener " + std::to_string(listener) + ": lsta " + std::to_string(technology - 3) + ","))
            return;
    expect(begins(entry.text, "listener " + std::to_string(m_notified) + ": ") &&
               entry.text.find("lsta") == std::string::npos,
           "events for those who listen: " + std::to_string(m_notified));
}

void Oracle::look(const Entry& entry) const
{
    if (begins(entry.text, "heard "))
        return;
    const std::string expected = std::to_string(m_waiting.size()) + " wait, " + m_running;
    if (entry.text != expected)
        fail(expected + ", and not " + entry.text);
}

/// All of them, numbered from 0, and no other.
void Oracle::requireEvents(const Step& step)
{
    const int identity = notifiedOf(step.number);
    std::size_t at = m_next;
    const auto nextEvent = [&]() -> std::string {
        while (at < m_entries.size() && m_entries[at].kind == Seen::event && !m_entries[at].isWorkers) {
            const std::string& text = m_entries[at++].text;
            if (text.find("lsta") == std::string::npos && text.find("notifyLsta") == std::string::npos)
                return text;
        }
        return "";
    };
    const bool isHeard = identity != 0 && m_notified >= 0 && m_modem.isHeard();
    for (int i = 0; isHeard && i <= step.count; ++i) {
        const std::string number = {"0123456789abcdef"[i / 16], "0123456789abcdef"[i % 16]};
        const std::string expected =
            "listener " + std::to_string(m_notified) + ": " + std::to_string(identity) + ", " + number + "000000";
        if (const std::string seen = nextEvent(); seen != expected)
            fail(expected + ", and not '" + seen + "'");
    }
    if (const std::string more = nextEvent(); !more.empty())
        fail("no further event than those sent, and not '" + more + "'");
}

}  // namespace seeds
