#pragma once

#include "scenario/ScenarioError.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// A day: the latest scenario time that is accepted.
inline constexpr std::chrono::milliseconds kLatestTime = std::chrono::hours(24);

/// One value of a JSON document, with its place for error messages. Refers to the document (and text) it was made from.
/// Every getter throws ScenarioError for a value that it does not accept.
class JsonNode
{
public:
    /// `name` begins every error. `text` is the text from which parseJson() made the document; errors name the line in
    /// it. Without a text, for example for a one-line message, errors name no line.
    JsonNode(std::string name, const nlohmann::json& document, std::string_view text = {});

    /// Refuses a value that is not an object or has other keys than these.
    void requireKeys(const std::vector<std::string>& keys) const;
    bool has(const std::string& key) const { return m_value->contains(key); }
    /// Empty if there is no such key.
    std::optional<JsonNode> find(const std::string& key) const;
    /// `accepted` appears in the error if the key is missing.
    JsonNode at(const std::string& key, const std::string& accepted) const;
    /// The members of an object, or the elements of an array.
    std::vector<JsonNode> members() const;
    std::vector<JsonNode> elements(std::size_t most = 10000) const;
    const std::string& key() const { return m_key; }

    bool flag() const;
    /// 1.0 and 1e3 count as whole numbers.
    long long integer(long long lowest, long long highest) const;
    double number(double lowest, double highest) const;
    std::string text(const std::string& accepted) const;
    /// The index of one of these words.
    std::size_t word(const std::vector<std::string>& words) const;
    /// The same, ignoring case.
    std::size_t wordInAnyCase(const std::vector<std::string>& words) const;
    /// A text that can be the name of a file.
    std::string fileName(const std::string& accepted) const;
    /// A whole number of milliseconds, up to a day.
    std::chrono::milliseconds time() const;
    bool isObject() const { return m_value->is_object(); }
    bool isArray() const { return m_value->is_array(); }
    bool isNull() const { return m_value->is_null(); }
    bool isText() const { return m_value->is_string(); }
    bool isNumber() const { return m_value->is_number(); }

    /// "VALUE is not accepted; accepted: `accepted`"
    [[noreturn]] void refuse(const std::string& accepted) const;

private:
    struct Source
    {
        std::string name{};
        const nlohmann::json* document = nullptr;
        std::string_view text{};
    };

    JsonNode(const JsonNode& parent, std::string key, const std::string& place, const nlohmann::json& value);
    JsonNode member(const std::string& key) const;
    std::string pathTo(const std::string& key) const;
    [[noreturn]] void fail(std::size_t line, const std::string& path, const std::string& text) const;
    std::size_t line() const;

    std::shared_ptr<const Source> m_source;
    std::string m_path{};
    std::string m_key{};  ///< the last part of the path, if that is a key
    const nlohmann::json* m_value;
};

}  // namespace arcsim
