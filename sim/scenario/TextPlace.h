#pragma once

#include <cstddef>
#include <iterator>

namespace arcsim {

/// The position of the last character consumed. A line break belongs to the line it ends.
struct Place
{
    std::size_t line = 1;
    std::size_t column = 0;
    bool atLineBreak = false;

    void consume(char c)
    {
        if (atLineBreak) {
            ++line;
            column = 0;
        }
        ++column;
        atLineBreak = c == '\n';
    }
};

/// Passes a text to the parser and tracks how far it has read. The parser reads at most one character ahead, and only
/// after a number, so the position is in the line of the current token.
class TextIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    TextIterator(const char* at, Place& place) : m_at(at), m_place(&place) {}
    const char& operator*() const { return *m_at; }
    TextIterator& operator++()
    {
        m_place->consume(*m_at++);
        return *this;
    }
    bool operator==(const TextIterator& other) const { return m_at == other.m_at; }
    bool operator!=(const TextIterator& other) const { return m_at != other.m_at; }

private:
    const char* m_at;
    Place* m_place;
};

}  // namespace arcsim
