#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace arcsim {

/// The longest line that either side of the socket sends, without its line end.
constexpr std::size_t kLongestLine = 65536;

/// Cuts arriving bytes into lines.
class LineBuffer
{
public:
    void add(std::string_view bytes) { m_bytes += bytes; }

    /// The next complete line without its line end; empty while there is none.
    std::optional<std::string> take()
    {
        const std::size_t end = m_bytes.find('\n', m_searched);
        if (end == std::string::npos) {
            m_bytes.erase(0, m_begin);
            m_begin = 0;
            m_searched = m_bytes.size();
            return std::nullopt;
        }
        std::string line = m_bytes.substr(m_begin, end - m_begin);
        m_begin = m_searched = end + 1;
        return line;
    }

    /// Whether a line is longer than accepted, complete or not. To be asked after take() returned nothing.
    bool isOverlong() const { return m_bytes.size() - m_begin > kLongestLine; }

private:
    std::string m_bytes{};
    std::size_t m_begin = 0;     ///< start of the bytes not taken yet
    std::size_t m_searched = 0;  ///< no line ends before this position
};

}  // namespace arcsim
