#include "record/JsonLine.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace arcrecord {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

bool belongsToANumber(char character)
{
    return (character >= '0' && character <= '9') || std::strchr("+-e", character) != nullptr;
}

}  // namespace

void JsonLine::put(char character)
{
    if (m_used == m_buffer.size())
        flush();
    m_buffer[m_used++] = character;
}

void JsonLine::flush()
{
    m_file.write(m_buffer.data(), m_used);
    m_used = 0;
}

void JsonLine::end()
{
    put('\n');
    flush();
}

void JsonLine::raw(const char* characters)
{
    for (; *characters != '\0'; ++characters)
        put(*characters);
}

void JsonLine::number(long long value)
{
    std::array<char, 24> digits{};
    std::snprintf(digits.data(), digits.size(), "%lld", value);
    raw(digits.data());
}

void JsonLine::real(double value)
{
    if (!std::isfinite(value))
        return raw("null");
    std::array<char, 48> digits{};
    for (int precision = 15; precision <= 17; ++precision) {
        std::snprintf(digits.data(), digits.size(), "%.*g", precision, value);
        if (!(std::strtod(digits.data(), nullptr) < value) && !(std::strtod(digits.data(), nullptr) > value))
            break;
    }
    // The locale's decimal point may take several bytes.
    for (const char* each = digits.data(); *each != '\0'; ++each) {
        if (belongsToANumber(*each))
            put(*each);
        else if (belongsToANumber(each[1]))
            put('.');
    }
}

void JsonLine::text(const char* terminated)
{
    if (terminated == nullptr)
        return raw("null");
    put('"');
    for (; *terminated != '\0'; ++terminated)
        escape(static_cast<unsigned char>(*terminated));
    put('"');
}

void JsonLine::text(const char* bytes, std::size_t count)
{
    put('"');
    for (std::size_t i = 0; i < count; ++i)
        escape(static_cast<unsigned char>(bytes[i]));
    put('"');
}

void JsonLine::escape(unsigned char byte)
{
    if (byte == '"' || byte == '\\') {
        put('\\');
        put(static_cast<char>(byte));
    } else if (byte < 0x20 || byte >= 0x7f) {
        raw("\\u00");
        put(kHexDigits[byte >> 4U]);
        put(kHexDigits[byte & 0xfU]);
    } else {
        put(static_cast<char>(byte));
    }
}

void JsonLine::hex(const void* bytes, std::size_t count)
{
    const auto* const each = static_cast<const unsigned char*>(bytes);
    put('"');
    for (std::size_t i = 0; i < count; ++i) {
        put(kHexDigits[each[i] >> 4U]);
        put(kHexDigits[each[i] & 0xfU]);
    }
    put('"');
}

JsonLine& Fields::key(const char* name)
{
    if (!m_first)
        m_line.raw(",");
    m_first = false;
    m_line.text(name);
    m_line.raw(":");
    return m_line;
}

}  // namespace arcrecord
