#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kelarcctl {

using Json = nlohmann::ordered_json;

/// Results on stdout: a document with --json, or else text.
class Output
{
public:
    explicit Output(bool isJson) : m_isJson(isJson) {}

    bool isJson() const { return m_isJson; }
    /// One result in both shapes; goes out at once. With --json as one line, in which "utc" comes first.
    void result(const Json& json, const std::string& text) const;
    /// What people are told and scripts are not.
    void text(const std::string& text) const;
    /// True when everything has gone out.
    static bool finish();

private:
    const bool m_isJson;
};

/// The present UTC, as 2026-03-01T12:00:00.000Z.
std::string utcText();

}  // namespace kelarcctl
