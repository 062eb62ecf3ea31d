#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace arcsim {

/// A pseudo-terminal in raw mode whose other end somebody may open, close and open again. No function waits. For one
/// thread at a time, except path().
///
/// This side does not hold the other end open. So it can see whether there is a reader, and a new reader gets present
/// data, not what filled the buffers hours ago. Writing works without a reader.
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

    /// Whether the reader has taken every byte, or every byte that its terminal mode lets it take (no incomplete line,
    /// not fewer bytes than it wants at once). Never true too early as long as write() is called only after this was
    /// true, with at most kMostUnread bytes.
    bool isTaken() const;
    static constexpr std::size_t kMostUnread = 2048;

    /// Discards what the reader has sent, so that the reader never blocks on writing.
    void discardInput();

    /// Discards unread bytes and resets the terminal mode that the last reader has set.
    void reset();

private:
    int m_master = -1;
    std::string m_path;
};

}  // namespace arcsim
