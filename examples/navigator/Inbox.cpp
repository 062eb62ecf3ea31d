#include "navigator/Inbox.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace navigator {

Inbox::Inbox() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
}

Inbox::~Inbox()
{
    ::close(m_descriptor);
}

void Inbox::put(ModemEvent event)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(std::move(event));
    }
    wake();
}

void Inbox::wake()
{
    ::eventfd_write(m_descriptor, 1);
}

std::vector<ModemEvent> Inbox::take()
{
    eventfd_t count = 0;
    ::eventfd_read(m_descriptor, &count);  // before taking events, so that a later one wakes again
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_events, {});
}

}  // namespace navigator
