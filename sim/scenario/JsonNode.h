#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace arcsim {

/// A scenario that cannot be simulated as written. The text names file, key, value and what is accepted.
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One value of a JSON file that knows where it stands, so that its refusal can say so. Refers to the document it was
/// made from. Every getter throws ScenarioError for a value it does not accept.
class JsonNode
{
public:
    JsonNode(std::string file, const nlohmann::json& document) : m_file(std::move(file)), m_value(document) {}

    /// Refuses a value that is no object and one with other keys than these.
    void requireKeys(const std::vector<std::string>& keys) const;
    bool has(const std::string& key) const { return m_value.contains(key); }
    /// `accepted` is for the refusal of an object without the key.
    JsonNode at(const std::string& key, const std::string& accepted) const;
    /// The members of an object, or the elements of an array.
    std::vector<JsonNode> members() const;
    std::vector<JsonNode> elements() const;
    const std::string& key() const { return m_key; }

    bool flag() const;
    long long integer(long long lowest, long long highest) const;
    double number(double lowest, double highest) const;
    std::string text(const std::string& accepted) const;
    /// A whole number of milliseconds, up to a day.
    std::chrono::milliseconds time() const;
    bool isObject() const { return m_value.is_object(); }

    [[noreturn]] void refuse(const std::string& accepted) const;

private:
    JsonNode(const JsonNode& parent, std::string key, const std::string& place, const nlohmann::json& value)
        : m_file(parent.m_file), m_path(parent.m_path + place), m_key(std::move(key)), m_value(value)
    {
    }
    JsonNode member(const std::string& key) const;
    [[noreturn]] void fail(const std::string& path, const std::string& text) const;

    std::string m_file;
    std::string m_path{};
    std::string m_key{};  ///< the last part of the path, if that is a key
    const nlohmann::json& m_value;
};

/// Parses a JSON text; `file` is its name for the errors. Also refuses an object that has a key twice.
nlohmann::json parseJson(const std::string& file, const std::string& text);

}  // namespace arcsim
