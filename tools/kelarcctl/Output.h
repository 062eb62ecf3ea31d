#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kelarcctl {

using Json = nlohmann::ordered_json;

/// Results on stdout: text, or with --json a document.
class Output
{
public:
    explicit Output(bool isJson) : m_isJson(isJson) {}

    bool isJson() const { return m_isJson; }
    /// Prints one of the two forms of a result at once. With --json, it is one line that begins with "utc".
    void result(const Json& json, const std::string& text) const;
    /// Text that is left out with --json.
    void text(const std::string& text) const;
    /// True when everything has been written.
    static bool finish();

private:
    const bool m_isJson;
};

/// The present UTC, as 2026-03-01T12:00:00.000Z.
std::string utcText();

}  // namespace kelarcctl
