#include "seeds/Oracle.h"

#include <algorithm>
#include <cstdlib>

namespace seeds {
namespace {

using Kind = Step::Kind;
using Seen = Entry::Kind;

constexpr int kSuccess = 0;

/// A log line has at most 510 characters; here its level and a blank go before it.
std::string cut(const std::string& line)
{
    const std::size_t level = line.find(' ') + 1;
    return line.substr(0, level + 510);
}

bool isUncounted(int code)
{
    return code == 15 || code == 26;
}

}  // namespace

const Entry* Oracle::next()
{
    while (m_next < m_entries.size() && !m_entries[m_next].isWorkers)
        apply(m_entries[m_next++]);
    return m_next < m_entries.size() ? &m_entries[m_next] : nullptr;
}

const Entry& Oracle::take(Seen kind, const std::string& expected)
{
    const Entry* const seen = next();
    if (seen == nullptr || seen->kind != kind || seen->text != expected)
        fail(expected);
    ++m_next;
    return *seen;
}

void Oracle::takeOwn(Seen kind, const std::string& text, int request)
{
    const bool isThere = m_next < m_entries.size() && !m_entries[m_next].isWorkers;
    if (!isThere || m_entries[m_next].kind != kind || m_entries[m_next].text != text ||
        m_entries[m_next].request != request)
        fail(text);
    ++m_next;
}

void Oracle::fail(const std::string& expected) const
{
    constexpr std::size_t kShown = 12;
    std::string text =
        "expected: " + expected + "\n  seen: " + (m_next < m_entries.size() ? m_entries[m_next].text : "nothing") +
        "\n  running: " + m_running + ", waiting: " + std::to_string(m_waiting.size()) + "\n  before that:\n";
    for (std::size_t i = m_next - std::min(m_next, kShown); i < m_next; ++i)
        text += "    " + m_entries[i].text + "\n";
    throw Wrong(text);
}

void Oracle::check()
{
    while (const Entry* const seen = next()) {
        if (seen->kind == Seen::idle && m_waiting.empty()) {
            m_running.clear();
            ++m_next;
        } else if (seen->kind == Seen::destroyed) {
            m_counts.dropped += static_cast<int>(m_waiting.size());
            m_waiting.clear();
            m_running.clear();
            m_lstaListeners.clear();
            m_notified = -1;
            m_isActive = m_isOpen = m_isEnding = false;
            ++m_next;
        } else if (m_waiting.empty() || m_isEnding) {
            fail("no further task");
        } else {
            const Waiting first = m_waiting.front();
            m_waiting.pop_front();
            perform(first);
        }
    }
    if (!m_waiting.empty())
        fail("the end of " + m_waiting.front().task.call);
}

void Oracle::perform(const Waiting& waiting)
{
    const Task& task = waiting.task;
    m_running = "kelarc/KelArc." + std::to_string(task.kind->taskLine) + ": " +
                (task.kind->taskText != nullptr ? task.kind->taskText : task.call);
    switch (task.ending) {
    case Ending::open:
    case Ending::close:
        openOrClose(waiting);
        return;
    case Ending::text:
    case Ending::typed:
    case Ending::power:
    case Ending::number:
    case Ending::system:
        readSetting(waiting);
        return;
    case Ending::lstaQuery:
        queryLsta(waiting);
        return;
    case Ending::stop:
        m_isActive = true;
        break;
    default:
        break;
    }
    const Called called = call(waiting);
    const bool isDone = called.end == End::success;
    const std::string code = "(" + std::to_string(called.code);
    switch (task.ending) {
    case Ending::method:
    case Ending::registration:
        return;
    case Ending::lstaSwitch:
        if (called.end == End::gaveUp)
            answer(waiting, code + ")");
        return;
    case Ending::arcVersion:
        answer(waiting, "(0, 'ArcRilD 1.0 (simulated)')");
        return;
    case Ending::rilVersion:
        answer(waiting, code + (isDone ? ", 'RIL 1.0 (simulated)', 'Modem 1.0 (simulated)')" : ", '', '')"));
        return;
    case Ending::atCommand:
        answer(waiting, code + ", '<UNKNOWN>')");
        return;
    case Ending::written:
        answer(waiting, code + (isDone && called.reply.isChanged ? ", true)" : ", false)"));
        return;
    case Ending::systemWritten:
        answer(waiting,
               code + ", " + std::to_string(task.number) + (isDone && called.reply.isChanged ? ", true)" : ", false)"));
        return;
    case Ending::rawStart:
        passPending();
        if (m_notified >= 0)
            take(Seen::event, "listener " + std::to_string(m_notified) + ": 7, null");
        answer(waiting, code + ", '" + (isDone ? Daemon::socketOfThisProcess() + ".nmea" : "") + "')");
        return;
    default:
        answer(waiting, code + ")");
    }
}

void Oracle::openOrClose(const Waiting& waiting)
{
    const bool isOpening = waiting.task.ending == Ending::open;
    const int code = m_isOpen == isOpening ? 32 : call(waiting).code;
    passPending();
    if (isOpening)
        m_isActive = true;
    else
        m_isOpen = false;
    answer(waiting, "(" + std::to_string(code) + ")");
}

void Oracle::readSetting(const Waiting& waiting)
{
    const Task& task = waiting.task;
    const Called called = call(waiting);
    const std::string reply = called.end == End::success ? called.reply.text : "";
    const std::string code = "(" + std::to_string(called.code) + ", ";
    if (task.ending == Ending::text) {
        answer(waiting, code + "'" + reply + "')");
        return;
    }
    if (task.ending == Ending::number) {
        const std::size_t digit = reply.find_first_of("0123456789");
        answer(waiting, code + std::to_string(digit == std::string::npos ? 0 : std::stoi(reply.substr(digit))) + ")");
        return;
    }
    const TypedSetting& setting = typedSetting(task.key);
    int value = 0;
    for (const auto& [number, text] : setting.texts)
        if (text == reply)
            value = number;
    if (value == 0 && (called.code == kSuccess || task.ending == Ending::power))
        take(Seen::line, "4 KelArc::operator()." + std::to_string(setting.unknownLine) +
                             ": Unknown return value from ARC_CheckModuleSetting(" + task.key + ") -> '" + reply + "'");
    const std::string system = task.ending == Ending::system ? std::to_string(task.number) + ", " : "";
    answer(waiting, code + system + std::to_string(value) + ")");
}

void Oracle::queryLsta(const Waiting& waiting)
{
    const Task& task = waiting.task;
    const Called called = call(waiting);
    passPending();
    if (called.end == End::gaveUp) {
        answer(waiting, "(" + std::to_string(called.code) + ", false, 0)");
        return;
    }
    if (called.end != End::success || !m_isActive)
        return;
    const ModemReply& reply = called.reply;
    if (reply.indicator != 990 + task.number) {
        take(Seen::line, "4 KelArc::operator().1093: Received wrong indicator " + std::to_string(reply.indicator) +
                             " from '" + task.call + "', expected " + std::to_string(task.number));
        answer(waiting, "(0, false, 0)");
        return;
    }
    if (reply.lsta) {
        answer(waiting, std::string("(0, ") + (reply.lsta->first != 0 ? "true" : "false") + ", " +
                            std::to_string(reply.lsta->second) + ")");
        return;
    }
    // What satellites are heard is the receiver's affair; a status needs some, and a strength that there can be.
    const Entry* const seen = next();
    const std::string text = seen == nullptr ? "" : seen->text;
    const bool isHeard = text.compare(0, 10, "(0, true, ") == 0 && std::atoi(text.c_str() + 10) > 0 &&
                         std::atoi(text.c_str() + 10) <= 60;
    answer(waiting, isHeard ? text : "(0, false, 0)");
}

Oracle::Called Oracle::call(const Waiting& waiting)
{
    const contract::PublishedCall& kind = *waiting.task.kind;
    Called called;
    passPending();
    if (kind.startTest && !m_isActive) {
        called.end = End::refused;
        return called;
    }
    int retriesLeft = kind.budget;
    for (;;) {
        called.code = attempt(waiting, retriesLeft, called);
        if (called.code == kSuccess) {
            called.end = End::success;
            return called;
        }
        take(Seen::pause, support::kPause);
        passPending();
        if (retriesLeft == 0) {
            const bool tells = tellsOfGivingUp(waiting);
            if (tells)
                take(Seen::line, cut(support::gaveUpLine(kind.giveUpLevel, kind.giveUpLine, waiting.task.call)));
            called.end = kind.tell == contract::Tell::ifActive && !tells ? End::cancelled : End::gaveUp;
            return called;
        }
        if (kind.loopTest && !m_isActive) {
            called.end = End::cancelled;
            return called;
        }
    }
}

bool Oracle::tellsOfGivingUp(const Waiting& waiting) const
{
    const contract::Tell tell = waiting.task.kind->tell;
    return tell == contract::Tell::always || (tell == contract::Tell::ifActive && m_isActive);
}

int Oracle::attempt(const Waiting& waiting, int& retriesLeft, Called& called)
{
    const Task& task = waiting.task;
    called.reply = m_modem.call(task);
    int code = called.reply.code;
    if (called.reply.hangs) {
        take(Seen::hang, "");
        passPending();
        code = m_modem.codeOfHang();
    }
    const Entry* const seen = next();
    if (called.reply.mayBeBusy && !called.reply.hangs && seen != nullptr &&
        seen->text == cut(support::resultLine(retriesLeft, task.call, 15)))
        code = 15;
    if (code != kSuccess && !isUncounted(code) && retriesLeft > 0)
        --retriesLeft;
    take(Seen::line, cut(support::resultLine(retriesLeft, task.call, code)));
    ++m_counts.attempts;
    m_modem.called(task, called.reply, code);
    if (task.ending == Ending::open)
        m_isOpen = code == kSuccess;
    else if (task.ending == Ending::close)
        m_isOpen = code != kSuccess;
    return code;
}

void Oracle::answer(const Waiting& waiting, const std::string& text)
{
    const Entry& seen = take(Seen::answer, text);
    if (seen.request != waiting.request) {
        --m_next;
        fail("the answer of request " + std::to_string(waiting.request) + ", not of " + std::to_string(seen.request));
    }
    ++m_counts.answers;
}

}  // namespace seeds
