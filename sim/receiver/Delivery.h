#pragma once

#include "receiver/PseudoTerminal.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace arcsim {

/// Hands epochs to whoever has the terminal open, in order and never with a part missing in between. What the last
/// reader left is thrown away as soon as any of the functions sees that it has gone. Nothing here waits. For one thread
/// at a time, except path().
class Delivery
{
public:
    struct Counters
    {
        std::uint64_t written = 0;  ///< epochs handed over completely
        std::uint64_t unheard = 0;  ///< epochs dropped because nobody had the terminal open
        std::uint64_t dropped = 0;  ///< epochs dropped because the reader had not made room
    };

    const std::string& path() const { return m_terminal.path(); }
    const Counters& counters() const { return m_counters; }

    bool hasReader();

    /// Part of an epoch is out and the rest waits for room.
    bool hasRest() const { return !m_epochs.empty(); }

    /// Writes what there is room for.
    void sendRest();

    /// Drops the epoch when the terminal has no room for any of it.
    void sendOrDrop(std::string epoch);

    /// Takes the epoch in behind those that advance() has not written yet.
    void keep(std::string epoch);

    /// Writes kept bytes up to the limit at which isTaken() is still reliable. True when the reader has had everything
    /// before the call.
    bool advance();

private:
    void write(std::size_t most);
    void forgetReader();

    PseudoTerminal m_terminal;
    Counters m_counters;
    std::deque<std::string> m_epochs;  // of the first one what is not written yet
    bool m_begun = false;              // some of the first one is out, so its rest must follow before anything else
    bool m_hadReader = false;          // since the terminal was last reset
};

}  // namespace arcsim
