#include "kelarcctl/monitor/Inbox.h"

#include <utility>

namespace kelarcctl {

namespace {

constexpr std::size_t kMostNews = 5000;

}  // namespace

void Inbox::post(Message message)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.push_back(std::move(message));
    m_bell.wake();
}

void Inbox::postNews(Message message)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_messages.size() >= kMostNews) {
        ++m_lost;
        return;
    }
    m_messages.push_back(std::move(message));
    m_bell.wake();
}

std::vector<Inbox::Message> Inbox::take()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bell.quiet();
    return std::exchange(m_messages, {});
}

std::uint64_t Inbox::lost()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_lost;
}

}  // namespace kelarcctl
