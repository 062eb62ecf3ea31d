#pragma once

#include "kelarc/Types.h"
#include "support/Journal.h"

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace support {

inline std::string describe(bool value)
{
    return value ? "true" : "false";
}

inline std::string describe(const std::string& text)
{
    return "'" + text + "'";
}

inline std::string describe(const kelarc::RilVersion& version)
{
    return describe(std::string(version.primary, strnlen(version.primary, sizeof version.primary))) + ", " +
           describe(std::string(version.secondary, strnlen(version.secondary, sizeof version.secondary)));
}

inline std::string describe(const void* data)
{
    return data == nullptr ? "null" : "data";
}

template <typename Value>
std::enable_if_t<std::is_arithmetic_v<Value>, std::string> describe(Value value)
{
    std::string text = std::to_string(value);  // a double has six decimals
    return text;
}

template <typename Value>
std::enable_if_t<std::is_enum_v<Value>, std::string> describe(Value value)
{
    return std::to_string(static_cast<long long>(value));
}

/// A callback for any operation: writes "label(argument, argument)" into a journal. Numbers and enumerators are
/// decimal, texts stand between single quotes.
class Answer
{
public:
    explicit Answer(Journal& journal, std::string label = "answer", Journal::Kind kind = Journal::Kind::answer)
        : m_journal(&journal), m_label(std::move(label)), m_kind(kind)
    {
    }

    /// As long as this object or a copy lives, `witness` is kept alive.
    Answer&& holding(std::shared_ptr<int> witness) &&
    {
        m_witness = std::move(witness);
        return std::move(*this);
    }

    template <typename... Values>
    void operator()(Values&&... values) const
    {
        std::string text = m_label + "(";
        const char* separator = "";
        ((text += separator + describe(values), separator = ", "), ...);
        m_journal->add(m_kind, text + ")");
    }

private:
    Journal* m_journal;
    std::string m_label;
    Journal::Kind m_kind;
    std::shared_ptr<int> m_witness;
};

}  // namespace support
