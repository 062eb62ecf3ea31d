#include "scenario/JsonNode.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace arcsim {

namespace {

constexpr std::size_t kLongestShownValue = 60;

std::string shown(double value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

}  // namespace

void JsonNode::fail(const std::string& path, const std::string& text) const
{
    throw ScenarioError(m_file + ": " + (path.empty() ? "" : path + ": ") + text);
}

void JsonNode::refuse(const std::string& accepted) const
{
    std::string value = m_value.dump();
    if (value.size() > kLongestShownValue)
        value = value.substr(0, kLongestShownValue) + "...";
    fail(m_path, value + " is not accepted; accepted: " + accepted);
}

void JsonNode::requireKeys(const std::vector<std::string>& keys) const
{
    if (!m_value.is_object())
        refuse("an object with the keys " + joined(keys));
    for (const auto& item : m_value.items())
        if (std::find(keys.begin(), keys.end(), item.key()) == keys.end())
            fail(m_path + (m_path.empty() ? "" : ".") + item.key(), "unknown key; accepted: " + joined(keys));
}

JsonNode JsonNode::member(const std::string& key) const
{
    return {*this, key, (m_path.empty() ? "" : ".") + key, m_value.at(key)};
}

JsonNode JsonNode::at(const std::string& key, const std::string& accepted) const
{
    if (!has(key))
        fail(m_path + (m_path.empty() ? "" : ".") + key, "missing; accepted: " + accepted);
    return member(key);
}

std::vector<JsonNode> JsonNode::members() const
{
    if (!m_value.is_object())
        refuse("an object");
    std::vector<JsonNode> nodes;
    for (const auto& item : m_value.items())
        nodes.push_back(member(item.key()));
    return nodes;
}

std::vector<JsonNode> JsonNode::elements() const
{
    if (!m_value.is_array())
        refuse("an array");
    std::vector<JsonNode> nodes;
    for (std::size_t i = 0; i < m_value.size(); ++i)
        nodes.push_back({*this, "", "[" + std::to_string(i) + "]", m_value[i]});
    return nodes;
}

bool JsonNode::flag() const
{
    if (!m_value.is_boolean())
        refuse("true or false");
    return m_value.get<bool>();
}

long long JsonNode::integer(long long lowest, long long highest) const
{
    // An unsigned number too large for the signed type would come out negative.
    const bool fits = m_value.is_number_integer() &&
                      (!m_value.is_number_unsigned() || m_value.get<unsigned long long>() <= 1ULL << 62U);
    if (!fits || m_value.get<long long>() < lowest || m_value.get<long long>() > highest)
        refuse("a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    return m_value.get<long long>();
}

double JsonNode::number(double lowest, double highest) const
{
    if (!m_value.is_number() || m_value.get<double>() < lowest || m_value.get<double>() > highest)
        refuse("a number from " + shown(lowest) + " to " + shown(highest));
    return m_value.get<double>();
}

std::string JsonNode::text(const std::string& accepted) const
{
    if (!m_value.is_string())
        refuse(accepted);
    return m_value.get<std::string>();
}

std::chrono::milliseconds JsonNode::time() const
{
    return std::chrono::milliseconds(integer(0, 24LL * 60 * 60 * 1000));
}

nlohmann::json parseJson(const std::string& file, const std::string& text)
{
    using nlohmann::json;
    std::vector<std::set<std::string>> seen;  // of the objects that are open
    const auto watchKeys = [&](int, json::parse_event_t event, json& parsed) {
        if (event == json::parse_event_t::object_start)
            seen.emplace_back();
        else if (event == json::parse_event_t::object_end)
            seen.pop_back();
        else if (event == json::parse_event_t::key && !seen.back().insert(parsed.get<std::string>()).second)
            throw ScenarioError(file + ": the key " + parsed.dump() + " is given twice in one object");
        return true;
    };
    try {
        return json::parse(text, watchKeys);
    } catch (const json::parse_error& error) {
        const std::string what = error.what();
        const std::size_t place = what.find("line ");
        throw ScenarioError(file + ": " + (place == std::string::npos ? what : what.substr(place)));
    }
}

}  // namespace arcsim
