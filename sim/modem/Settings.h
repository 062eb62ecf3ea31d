#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace arcsim::modem {

/// The modem's GNSS settings by key. Values travel in double quotes: every `quoted` text includes them.
class Settings
{
public:
    enum class Write
    {
        changed,
        same,
        unknownKey,
        wrongValue,
        readOnly,
    };

    /// All settings at their factory values.
    Settings();

    /// The quoted value; empty for an unknown key.
    std::optional<std::string> read(const std::string& key) const;
    /// The quoted values by key.
    const std::map<std::string, std::string>& all() const { return m_quoted; }
    /// The value without its quotes; empty for an unknown key.
    std::string plain(const std::string& key) const;

    Write write(const std::string& key, const std::string& quoted);
    /// Stores any text under any key.
    void force(const std::string& key, const std::string& quoted);

    /// Increases with every stored value.
    unsigned changes() const { return m_changes; }

    static std::string quote(const std::string& plainText) { return '"' + plainText + '"'; }
    static std::vector<std::string> keys();
    /// The accepted values of `key` for messages: "std or max", "5 to 45", "nothing (read only)"; empty for an unknown
    /// key.
    static std::string accepted(const std::string& key);

private:
    std::map<std::string, std::string> m_quoted;
    unsigned m_changes = 0;
};

}  // namespace arcsim::modem
