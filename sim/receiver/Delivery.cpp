#include "receiver/Delivery.h"

#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace arcsim {

bool Delivery::hasReader()
{
    if (!m_terminal.hasReader()) {
        forgetReader();
        return false;
    }
    m_hadReader = true;
    return true;
}

void Delivery::sendRest()
{
    m_terminal.discardInput();
    if (hasReader())
        write(std::numeric_limits<std::size_t>::max());
}

void Delivery::sendOrDrop(std::string epoch)
{
    if (!hasReader()) {
        ++m_counters.unheard;
        return;
    }
    if (hasRest()) {
        ++m_counters.dropped;
        return;
    }
    m_epochs.push_back(std::move(epoch));
    sendRest();
    if (hasRest() && !m_begun) {  // no byte of it fitted, so the whole epoch may be dropped
        m_epochs.clear();
        ++m_counters.dropped;
    }
}

void Delivery::keep(std::string epoch)
{
    if (hasReader())
        m_epochs.push_back(std::move(epoch));
    else
        ++m_counters.unheard;
}

bool Delivery::advance()
{
    m_terminal.discardInput();
    if (!hasReader() || !m_terminal.isTaken())
        return false;
    if (m_epochs.empty())
        return true;
    write(PseudoTerminal::kMostUnread);
    return false;
}

void Delivery::write(std::size_t most)
{
    while (!m_epochs.empty()) {
        std::string& first = m_epochs.front();
        const std::size_t count = m_terminal.write(std::string_view(first).substr(0, most));
        m_begun = m_begun || count > 0;
        most -= count;
        first.erase(0, count);
        if (!first.empty())
            return;
        m_epochs.pop_front();
        m_begun = false;
        ++m_counters.written;
    }
}

void Delivery::forgetReader()
{
    if (!std::exchange(m_hadReader, false))
        return;
    m_counters.unheard += m_epochs.size();
    m_epochs.clear();
    m_begun = false;
    try {
        m_terminal.reset();
    } catch (const std::runtime_error&) {
        m_hadReader = true;  // no descriptor is free now; the next check tries again
    }
}

}  // namespace arcsim
