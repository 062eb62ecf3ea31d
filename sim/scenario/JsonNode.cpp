#include "scenario/JsonNode.h"

#include "scenario/JsonLines.h"
#include "scenario/JsonShown.h"
#include "scenario/Numbers.h"
#include "support/Words.h"

#include <algorithm>
#include <cmath>

namespace arcsim {

using nlohmann::json;

JsonNode::JsonNode(std::string name, const json& document, std::string_view text)
    : m_source(std::make_shared<const Source>(Source{std::move(name), &document, text})), m_value(&document)
{
}

JsonNode::JsonNode(const JsonNode& parent, std::string key, const std::string& place, const json& value)
    : m_source(parent.m_source), m_path(parent.m_path + place), m_key(std::move(key)), m_value(&value)
{
}

std::size_t JsonNode::line() const
{
    return lineOf(LineOf::value, *m_value, *m_source->document, m_source->text);
}

void JsonNode::fail(std::size_t line, const std::string& path, const std::string& text) const
{
    std::string place = m_source->name;
    if (line > 0)
        place += ":" + std::to_string(line);
    for (const std::string& part : {path, text})
        place += (place.empty() || part.empty() ? "" : ": ") + part;
    throw ScenarioError(place);
}

void JsonNode::refuse(const std::string& accepted) const
{
    fail(line(), m_path, shown(*m_value) + " is not accepted; accepted: " + accepted);
}

std::string JsonNode::pathTo(const std::string& key) const
{
    return m_path + (m_path.empty() ? "" : ".") + shownKey(key);
}

void JsonNode::requireKeys(const std::vector<std::string>& keys) const
{
    if (!m_value->is_object())
        refuse("an object with the keys " + support::joined(keys));
    const std::string accepted = keys.empty() ? "none" : support::joined(keys);
    for (const auto& item : m_value->items())
        if (std::find(keys.begin(), keys.end(), item.key()) == keys.end())
            fail(lineOf(LineOf::key, item.value(), *m_source->document, m_source->text), pathTo(item.key()),
                 "unknown key; accepted: " + accepted + support::suggestion(item.key(), keys));
}

JsonNode JsonNode::member(const std::string& key) const
{
    return {*this, key, (m_path.empty() ? "" : ".") + shownKey(key), m_value->at(key)};
}

std::optional<JsonNode> JsonNode::find(const std::string& key) const
{
    return has(key) ? std::optional(member(key)) : std::nullopt;
}

JsonNode JsonNode::at(const std::string& key, const std::string& accepted) const
{
    if (!has(key))
        fail(line(), pathTo(key), "missing; accepted: " + accepted);
    return member(key);
}

std::vector<JsonNode> JsonNode::members() const
{
    if (!m_value->is_object())
        refuse("an object");
    std::vector<JsonNode> nodes;
    for (const auto& item : m_value->items())
        nodes.push_back(member(item.key()));
    return nodes;
}

std::vector<JsonNode> JsonNode::elements(std::size_t most) const
{
    if (!m_value->is_array())
        refuse("an array");
    if (m_value->size() > most)
        fail(line(), m_path,
             std::to_string(m_value->size()) + " elements are not accepted; accepted: at most " + std::to_string(most));
    std::vector<JsonNode> nodes;
    for (std::size_t i = 0; i < m_value->size(); ++i)
        nodes.push_back({*this, "", "[" + std::to_string(i) + "]", (*m_value)[i]});
    return nodes;
}

bool JsonNode::flag() const
{
    if (!m_value->is_boolean())
        refuse("true or false");
    return m_value->get<bool>();
}

long long JsonNode::integer(long long lowest, long long highest) const
{
    constexpr double kLargestWhole = 9007199254740992;  // beyond, not every whole number has a double of its own
    const auto accept = [&](long long value) { return value >= lowest && value <= highest; };
    if (m_value->is_number_float()) {
        const auto value = m_value->get<double>();
        if (std::abs(value) <= kLargestWhole && std::trunc(value) == value && accept(static_cast<long long>(value)))
            return static_cast<long long>(value);
    } else if (m_value->is_number_integer()) {
        // An unsigned number too large for the signed type would come out negative.
        const bool fits = !m_value->is_number_unsigned() || m_value->get<unsigned long long>() <= 1ULL << 62U;
        if (fits && accept(m_value->get<long long>()))
            return m_value->get<long long>();
    }
    refuse("a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
}

double JsonNode::number(double lowest, double highest) const
{
    const double value = m_value->is_number() ? m_value->get<double>() : std::nan("");
    if (!(value >= lowest && value <= highest))  // nor NaN
        refuse("a number from " + shownNumber(lowest) + " to " + shownNumber(highest));
    return value;
}

std::string JsonNode::text(const std::string& accepted) const
{
    if (!m_value->is_string())
        refuse(accepted);
    return m_value->get<std::string>();
}

std::size_t JsonNode::word(const std::vector<std::string>& words) const
{
    const std::string given = text(support::joined(words));
    const auto found = std::find(words.begin(), words.end(), given);
    if (found == words.end())
        refuse(support::joined(words) + support::suggestion(given, words));
    return static_cast<std::size_t>(found - words.begin());
}

std::size_t JsonNode::wordInAnyCase(const std::vector<std::string>& words) const
{
    const std::string given = text(support::joined(words));
    for (std::size_t i = 0; i < words.size(); ++i)
        if (support::sameLetters(words[i], given))
            return i;
    refuse(support::joined(words) + support::suggestion(given, words));
}

std::string JsonNode::fileName(const std::string& accepted) const
{
    std::string name = text(accepted);
    if (name.empty() || name.find('\0') != std::string::npos)
        refuse(accepted);
    return name;
}

std::chrono::milliseconds JsonNode::time() const
{
    return std::chrono::milliseconds(integer(0, kLatestTime.count()));
}

}  // namespace arcsim
