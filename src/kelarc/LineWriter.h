#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace kelarc {

/// Appends texts and numbers to a buffer of the caller's, truncating silently.
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

    /// In decimal. The standard library's conversion is not used: inlined, it copies a table for each number.
    template <typename Number, typename = std::enable_if_t<std::is_integral_v<Number>>>
    LineWriter& operator<<(Number number)
    {
        using Magnitude = std::make_unsigned_t<Number>;
        const bool isNegative = number < Number{0};
        auto rest = static_cast<Magnitude>(isNegative ? Magnitude{0} - static_cast<Magnitude>(number) : number);
        char digits[24];
        char* const end = digits + sizeof digits;
        char* first = end;
        do {
            *--first = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (isNegative)
            *--first = '-';
        return *this << std::string_view(first, static_cast<std::size_t>(end - first));
    }

    /// Where the next character goes, and the room that is left.
    char* next() const { return m_next; }
    std::size_t room() const { return static_cast<std::size_t>(m_end - m_next); }
    /// As if `count` characters had been written, or as many as fit.
    void advance(std::size_t count) { m_next += count < room() ? count : room(); }

private:
    char* m_next;
    char* m_end;
};

}  // namespace kelarc
