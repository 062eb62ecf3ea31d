#pragma once

#include "receiver/PseudoTerminal.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace arcsim {

/// Writes epochs to the terminal's reader, in order and never with a part missing in the middle. Data that the last
/// reader left is discarded as soon as any function sees that the reader has gone. No function waits. For one thread at
/// a time, except path().
class Delivery
{
public:
    struct Counters
    {
        std::uint64_t written = 0;  ///< epochs written completely
        std::uint64_t unheard = 0;  ///< epochs dropped because nobody had the terminal open
        std::uint64_t dropped = 0;  ///< epochs dropped because the reader had not made room
    };

    const std::string& path() const { return m_terminal.path(); }
    const Counters& counters() const { return m_counters; }

    bool hasReader();

    /// Part of an epoch is written and the rest waits for room.
    bool hasRest() const { return !m_epochs.empty(); }

    /// Writes as much as there is room for.
    void sendRest();

    /// Drops the epoch if the terminal has no room for its first byte.
    void sendOrDrop(std::string epoch);

    /// Queues the epoch after those that advance() has not written yet.
    void keep(std::string epoch);

    /// Writes kept bytes up to the limit at which isTaken() is still reliable. True when the reader has had everything
    /// before the call.
    bool advance();

private:
    void write(std::size_t most);
    void forgetReader();

    PseudoTerminal m_terminal;
    Counters m_counters;
    std::deque<std::string> m_epochs;  // the first one without the bytes already written
    bool m_begun = false;              // the first one is partly written, so its rest must come next
    bool m_hadReader = false;          // since the terminal was last reset
};

}  // namespace arcsim
