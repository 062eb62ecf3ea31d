#pragma once

#include "record/OutputFile.h"

#include <array>
#include <cstddef>

namespace arcrecord {

/// Writes one line of JSON to a file. A line may have any length: a full buffer is written out in pieces. The output is
/// ASCII, whatever bytes a text holds.
class JsonLine
{
public:
    explicit constexpr JsonLine(OutputFile& file) : m_file(file) {}

    /// Writes the characters unchanged.
    void raw(const char* characters);
    void number(long long value);
    /// The shortest text that reads back as the same number; null for NaN and infinity. Independent of the locale.
    void real(double value);
    /// Null for a null pointer.
    void text(const char* terminated);
    /// A byte above 0x7f is written as the character with the same number, so every text is valid JSON and distinct
    /// texts stay distinct.
    void text(const char* bytes, std::size_t count);
    void hex(const void* bytes, std::size_t count);

    /// Ends the line and writes it.
    void end();
    /// Discards what has not been written.
    void drop() { m_used = 0; }

private:
    void put(char character);
    void escape(unsigned char byte);
    void flush();

    OutputFile& m_file;
    std::array<char, 4096> m_buffer{};
    std::size_t m_used = 0;
};

/// Writes the members of one JSON object, in the order in which they are given.
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
    /// Whether the application passed a pointer for this output.
    void place(const char* name, bool given) { key(name).raw(given ? "\"set\"" : "null"); }
    /// For a value that is written to the line itself.
    JsonLine& key(const char* name);

private:
    JsonLine& m_line;
    bool m_first = true;
};

}  // namespace arcrecord
