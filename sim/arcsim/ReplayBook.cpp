#include "arcsim/ReplayBook.h"

#include "arcsim/CallShape.h"
#include "modem/ResultCode.h"

#include <algorithm>
#include <iterator>

namespace arcsim {

using nlohmann::ordered_json;

namespace {

/// Advances to the first entry that is false.
template <typename IsTrue>
void advance(std::size_t& soFar, std::size_t size, const IsTrue& isTrue)
{
    while (soFar < size && isTrue(soFar))
        ++soFar;
}

}  // namespace

ReplayBook::ReplayBook(Recording recording)
    : m_recording(std::move(recording)), m_begun(m_recording.calls.size()), m_ended(m_recording.calls.size())
{
    for (std::size_t i = 0; i < m_recording.calls.size(); ++i) {
        const RecordedCall& call = m_recording.calls[i];
        Thread& thread = m_recorded[call.thread];
        const std::size_t position = thread.calls.size();
        thread.calls.push_back(i);
        thread.same[{call.function, call.arguments.dump()}].push_back(position);
        if (call.end)
            thread.answered[call.function].push_back(position);
    }
}

bool ReplayBook::isSame(std::size_t call, const std::string& function, const std::string& arguments) const
{
    return m_recording.calls[call].function == function && m_recording.calls[call].arguments.dump() == arguments;
}

ReplayBook::Thread* ReplayBook::threadFor(ThreadId thread, const std::string& function, const std::string& arguments)
{
    if (const auto known = m_replaying.find(thread); known != m_replaying.end())
        return known->second;
    Thread* chosen = nullptr;
    for (auto& [number, each] : m_recorded) {
        if (each.assigned)
            continue;
        const bool same = isSame(each.calls.front(), function, arguments);
        if (same || chosen == nullptr)
            chosen = &each;
        if (same)
            break;
    }
    if (chosen != nullptr) {
        chosen->assigned = true;
        m_replaying[thread] = chosen;
    }
    return chosen;
}

ReplayBook::Answer ReplayBook::next(ThreadId thread, const std::string& function, const ordered_json& arguments)
{
    ++m_calls;
    const CallShape* const shape = findShape(function);
    const std::string comparable = shape == nullptr ? "" : textOf(shape->arguments, nlohmann::json(arguments));
    Thread* const recorded = threadFor(thread, function, comparable);
    if (recorded == nullptr) {
        note(m_calls, "no further thread", callText(function, arguments));
        return substitute(nullptr, function);
    }
    const std::size_t position = positionOf(*recorded, function, comparable);
    if (recorded->next == recorded->calls.size()) {
        note(m_calls, "no further call of this thread", callText(function, arguments));
    } else if (position != recorded->next && !m_difference) {
        const RecordedCall& expected = m_recording.calls[recorded->calls[recorded->next]];
        note(expected.number, callText(std::string(expected.function), expected.arguments.value()),
             callText(function, arguments));
    }
    return position == recorded->calls.size() ? substitute(recorded, function) : take(*recorded, position);
}

/// Position of the next call that is the same; the number of calls if there is none.
std::size_t ReplayBook::positionOf(const Thread& thread, const std::string& function, const std::string& arguments)
{
    const auto same = thread.same.find({function, arguments});
    if (same == thread.same.end())
        return thread.calls.size();
    const auto found = std::lower_bound(same->second.begin(), same->second.end(), thread.next);
    return found == same->second.end() ? thread.calls.size() : *found;
}

/// Skips the calls before `position` that were not made: events must not wait for them.
ReplayBook::Answer ReplayBook::take(Thread& thread, std::size_t position)
{
    for (std::size_t i = thread.next; i < position; ++i) {
        m_begun[thread.calls[i]] = true;
        m_ended[thread.calls[i]] = true;
    }
    m_begun[thread.calls[position]] = true;
    thread.next = position + 1;
    return answerOf(m_recording.calls[thread.calls[position]]);
}

ReplayBook::Answer ReplayBook::answerOf(const RecordedCall& call) const
{
    if (!call.end)
        return {call.number, true, 0, ordered_json::object(), {}};
    return {call.number, false, call.end->code, call.end->outputs.value(), call.end->took};
}

/// The latest position that was passed, or else the next one.
const RecordedCall* ReplayBook::substituteIn(const Thread& thread, const std::string& function) const
{
    const auto answered = thread.answered.find(function);
    if (answered == thread.answered.end())
        return nullptr;
    const Thread::Positions& positions = answered->second;
    const auto next = std::lower_bound(positions.begin(), positions.end(), thread.next);
    const std::size_t position = next == positions.begin() ? *next : *std::prev(next);
    return &m_recording.calls[thread.calls[position]];
}

ReplayBook::Answer ReplayBook::substitute(const Thread* thread, const std::string& function) const
{
    const RecordedCall* found = nullptr;
    if (thread != nullptr)
        found = substituteIn(*thread, function);
    for (auto each = m_recorded.begin(); found == nullptr && each != m_recorded.end(); ++each)
        found = substituteIn(each->second, function);
    Answer answer;
    answer.code = modem::kGenericError;
    if (found != nullptr)
        answer = answerOf(*found);
    answer.number = 0;
    return answer;
}

void ReplayBook::answered(unsigned number)
{
    if (number > 0 && number <= m_ended.size())
        m_ended[number - 1] = true;
}

std::vector<ReplayBook::DueEvent> ReplayBook::dueEvents()
{
    advance(m_begunSoFar, m_begun.size(), [&](std::size_t i) { return m_begun[i]; });
    const std::vector<unsigned>& order = m_recording.endOrder;
    advance(m_endedSoFar, order.size(), [&](std::size_t i) { return m_ended[order[i] - 1]; });
    std::vector<DueEvent> due;
    const auto& events = m_recording.events;
    for (; m_nextEvent < events.size(); ++m_nextEvent) {
        const RecordedEvent& event = events[m_nextEvent];
        if (event.callsBegun > m_begunSoFar || event.callsEnded > m_endedSoFar)
            break;
        due.push_back({m_nextEvent, event.afterCall});
    }
    return due;
}

void ReplayBook::note(unsigned call, std::string expected, std::string got)
{
    if (!m_difference)
        m_difference = Difference{call, std::move(expected), std::move(got)};
}

std::optional<ReplayBook::Difference> ReplayBook::finish()
{
    const auto missing = std::find(m_begun.begin(), m_begun.end(), false);
    if (missing != m_begun.end()) {
        const RecordedCall& call = m_recording.calls[static_cast<std::size_t>(missing - m_begun.begin())];
        note(call.number, callText(std::string(call.function), call.arguments.value()), "no call");
    }
    return m_difference;
}

std::string textOf(const std::optional<ReplayBook::Difference>& difference)
{
    if (!difference)
        return "no difference";
    return "call " + std::to_string(difference->call) + ": expected " + difference->expected + ", got " +
           difference->got;
}

}  // namespace arcsim
