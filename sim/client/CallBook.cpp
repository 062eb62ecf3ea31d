#include "client/CallBook.h"

#include <algorithm>

namespace arcsim {

std::optional<Answer> CallBook::Script::take(unsigned number)
{
    if (const auto named = byNumber.extract(number); !named.empty())  // a number is used only once
        return std::move(named.mapped());
    if (next.empty())
        return always;
    Answer answer = std::move(next.front());
    next.pop_front();
    return answer;
}

CallBook::Entry CallBook::enter(Function function, std::vector<std::string> arguments)
{
    const std::scoped_lock lock(m_mutex);
    const unsigned number = ++m_counts.at(indexOf(function));
    Call call{function, number, std::move(arguments), std::this_thread::get_id()};
    if (m_calls.size() < kKeptCalls) {
        m_calls.push_back(std::move(call));
    } else {
        m_calls[m_oldest] = std::move(call);
        m_oldest = (m_oldest + 1) % kKeptCalls;
    }
    m_called.notify_all();
    return {number, m_scripts.at(indexOf(function)).take(number)};
}

void CallBook::answerCall(Function function, unsigned number, Answer answer)
{
    const std::scoped_lock lock(m_mutex);
    m_scripts.at(indexOf(function)).byNumber[number] = std::move(answer);
}

void CallBook::answerNext(Function function, std::vector<Answer> answers)
{
    const std::scoped_lock lock(m_mutex);
    auto& next = m_scripts.at(indexOf(function)).next;
    for (Answer& answer : answers)
        next.push_back(std::move(answer));
}

void CallBook::answerAlways(Function function, Answer answer)
{
    const std::scoped_lock lock(m_mutex);
    m_scripts.at(indexOf(function)).always = std::move(answer);
}

void CallBook::clearAnswers(Function function)
{
    // Destroyed without the lock: objects that a script's `during` captured may call the control functions.
    Script dropped;
    const std::scoped_lock lock(m_mutex);
    std::swap(dropped, m_scripts.at(indexOf(function)));
}

void CallBook::clear()
{
    std::array<Script, kFunctions> dropped;
    const std::scoped_lock lock(m_mutex);
    std::swap(dropped, m_scripts);
    m_calls.clear();
    m_oldest = 0;
    m_counts = {};
}

std::vector<Call> CallBook::calls() const
{
    const std::scoped_lock lock(m_mutex);
    std::vector<Call> inOrder = m_calls;
    std::rotate(inOrder.begin(), inOrder.begin() + static_cast<std::ptrdiff_t>(m_oldest), inOrder.end());
    return inOrder;
}

bool CallBook::waitForCalls(Function function, unsigned count, std::chrono::milliseconds limit) const
{
    std::unique_lock lock(m_mutex);
    return m_called.wait_for(lock, limit, [&] { return m_counts.at(indexOf(function)) >= count; });
}

}  // namespace arcsim
