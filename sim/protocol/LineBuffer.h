#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace arcsim {

/// The longest line that either side of the socket sends, without its end.
constexpr std::size_t kLongestLine = 65536;

/// Cuts what arrives into lines.
class LineBuffer
{
public:
    void add(std::string_view bytes) { m_bytes += bytes; }

    /// The next complete line without its end; nothing while there is none.
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

    /// A line is longer than accepted, whether its end has come or not. Asked after take() gave nothing.
    bool isOverlong() const { return m_bytes.size() - m_begin > kLongestLine; }

private:
    std::string m_bytes{};
    std::size_t m_begin = 0;     ///< of what has not been taken
    std::size_t m_searched = 0;  ///< no line ends before
};

}  // namespace arcsim
