#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace kelarc {

/// Writes texts and numbers one behind the other into memory of the caller's; what does not fit is cut without a word.
class LineWriter
{
public:
    LineWriter(char* begin, std::size_t room) : m_next(begin), m_end(begin + room) {}

    LineWriter& operator<<(std::string_view text)
    {
        if (text.size() > room())
            text = text.substr(0, room());
        std::memcpy(m_next, text.data(), text.size());
        m_next += text.size();
        return *this;
    }

    template <typename Number, typename = std::enable_if_t<std::is_integral_v<Number>>>
    LineWriter& operator<<(Number number)
    {
        const std::to_chars_result written = std::to_chars(m_next, m_end, number);
        if (written.ec != std::errc())
            return *this << std::string_view(std::to_string(number));  // as many digits as there is room for
        m_next = written.ptr;
        return *this;
    }

    /// Where the next character goes, and how many there is room for.
    char* next() const { return m_next; }
    std::size_t room() const { return static_cast<std::size_t>(m_end - m_next); }

private:
    char* m_next;
    char* m_end;
};

}  // namespace kelarc
