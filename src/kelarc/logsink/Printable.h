#pragma once

// Makes text safe for a terminal. Part of kelarc/logsink.h; needs nothing else of it.

#include <cstddef>
#include <string>
#include <string_view>

namespace kelarc::logsink {

namespace detail {

/// Length in bytes of the first character of `text`; 0 if it is not well-formed UTF-8.
inline std::size_t utf8Length(std::string_view text)
{
    // Beyond the end: 0, which continues no character.
    const auto byte = [text](std::size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U; };
    const unsigned first = byte(0);
    if (text.empty() || (first > 0x7f && first < 0xc2) || first > 0xf4)
        return 0;
    if (first <= 0x7f)
        return 1;
    const std::size_t length = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    // Excludes overlong forms, halves of a surrogate pair, and values beyond U+10FFFF.
    const unsigned lowest = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
    const unsigned highest = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
    if (byte(1) < lowest || byte(1) > highest)
        return 0;
    for (std::size_t at = 2; at < length; ++at)
        if (byte(at) < 0x80 || byte(at) > 0xbf)
            return 0;
    return length;
}

/// For one character, as long as utf8Length() says: C0, DEL, and C1, which UTF-8 writes as C2 80 to C2 9F.
inline bool isControl(std::string_view character)
{
    const auto last = static_cast<unsigned char>(character.back());
    return character.size() == 1 ? last < 0x20 || last == 0x7f
                                 : character.size() == 2 && character.front() == '\xc2' && last < 0xa0;
}

inline void addEscaped(std::string& shown, char byte)
{
    constexpr std::string_view digits = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    if (byte == '\n' || byte == '\r' || byte == '\t')
        (shown += '\\') += byte == '\n' ? 'n' : byte == '\r' ? 'r' : 't';
    else
        ((shown += "\\x") += digits[value >> 4U]) += digits[value & 0xfU];
}

}  // namespace detail

/// The text as one line that cannot control a terminal. Control characters, and bytes that are not well-formed UTF-8,
/// become visible: a newline as `\n`, a carriage return as `\r`, a tab as `\t`, every other such byte as `\x` and two
/// lower-case hexadecimal digits. Control characters are U+0000 to U+001F, U+007F, and U+0080 to U+009F. All other
/// characters stay unchanged.
///
/// For people, not for parsing: a backslash in the text stays unchanged too, so `\n` may have been a newline or two
/// characters.
inline std::string printable(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = detail::utf8Length(text);
        const std::string_view character = text.substr(0, length == 0 ? 1 : length);
        if (length == 0 || detail::isControl(character)) {
            for (const char byte : character)
                detail::addEscaped(shown, byte);
        } else {
            shown += character;
        }
        text.remove_prefix(character.size());
    }
    return shown;
}

}  // namespace kelarc::logsink
