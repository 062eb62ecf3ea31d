#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace arcsim {

/// A pseudo-terminal in raw mode whose other end somebody may open, close and open again. Nothing here waits.
/// For one thread at a time, except path().
///
/// This side does not hold the other end open: that is what lets it see whether anybody listens, so that a new reader
/// is given what happens now and not what filled the buffers hours ago. Writing works without a reader.
class PseudoTerminal
{
public:
    /// Throws std::runtime_error.
    PseudoTerminal();
    ~PseudoTerminal();

    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const std::string& path() const { return m_path; }

    bool hasReader() const;

    /// Returns how many of the bytes fitted.
    std::size_t write(std::string_view bytes);

    /// The reader finds nothing to read: it has taken every byte, or all that the mode it has set lets it take (none of
    /// a line without its end, none of fewer bytes than it wants at once). Never says so too early as long as write()
    /// is called only after this was true, with kMostUnread bytes at the most.
    bool isTaken() const;
    static constexpr std::size_t kMostUnread = 2048;

    /// Throws away what the reader has sent, so that it never blocks there.
    void discardInput();

    /// Throws away what nobody has read and undoes what the last reader did to the terminal's mode.
    void reset();

private:
    int m_master = -1;
    std::string m_path;
};

}  // namespace arcsim
