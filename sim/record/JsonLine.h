#pragma once

#include "record/OutputFile.h"

#include <array>
#include <cstddef>

namespace arcrecord {

/// One line of JSON on its way into a file. What does not fit the buffer goes ahead in pieces, so that a line may be of
/// any length. Only ASCII characters come out, whatever bytes a text is made of.
class JsonLine
{
public:
    explicit constexpr JsonLine(OutputFile& file) : m_file(file) {}

    /// Characters as they are.
    void raw(const char* characters);
    void number(long long value);
    /// As short as it can be read back; null for what is no number. The language of the process plays no part.
    void real(double value);
    /// Null for a null pointer.
    void text(const char* terminated);
    /// A byte above 7f is the character of the same number, so every text is one of JSON and can be told from others.
    void text(const char* bytes, std::size_t count);
    void hex(const void* bytes, std::size_t count);

    /// Ends the line and writes it.
    void end();
    /// Forgets what has not been written.
    void drop() { m_used = 0; }

private:
    void put(char character);
    void escape(unsigned char byte);
    void flush();

    OutputFile& m_file;
    std::array<char, 4096> m_buffer{};
    std::size_t m_used = 0;
};

/// The members of one JSON object, in the order in which they are given.
class Fields
{
public:
    explicit Fields(JsonLine& line) : m_line(line) { m_line.raw("{"); }
    ~Fields() { m_line.raw("}"); }
    Fields(const Fields&) = delete;
    Fields& operator=(const Fields&) = delete;

    void number(const char* name, long long value) { key(name).number(value); }
    void real(const char* name, double value) { key(name).real(value); }
    void flag(const char* name, bool value) { key(name).raw(value ? "true" : "false"); }
    void text(const char* name, const char* terminated) { key(name).text(terminated); }
    void text(const char* name, const char* bytes, std::size_t count) { key(name).text(bytes, count); }
    void hex(const char* name, const void* bytes, std::size_t count) { key(name).hex(bytes, count); }
    /// Whether the application gave a place to write to.
    void place(const char* name, bool given) { key(name).raw(given ? "\"set\"" : "null"); }
    /// For a value that is written to the line itself.
    JsonLine& key(const char* name);

private:
    JsonLine& m_line;
    bool m_first = true;
};

}  // namespace arcrecord
