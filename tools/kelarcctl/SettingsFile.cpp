#include "kelarcctl/SettingsFile.h"

#include "kelarcctl/CommandLine.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Output.h"

#include "support/NearestName.h"
#include "support/Nesting.h"
#include "support/Words.h"

#include <algorithm>
#include <set>

namespace kelarcctl {

namespace {

constexpr std::size_t kLongestShown = 40;

/// The objects' keys that stand twice: of two values, nobody knows which is meant. Not by the parser's own callback,
/// whose time grows with the square of a list's length.
class DoubleKeys : public nlohmann::json_sax<Json>
{
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(Json::number_integer_t) override { return true; }
    bool number_unsigned(Json::number_unsigned_t) override { return true; }
    bool number_float(Json::number_float_t, const std::string&) override { return true; }
    bool string(std::string&) override { return true; }
    bool binary(Json::binary_t&) override { return true; }
    bool start_object(std::size_t) override
    {
        m_keys.emplace_back();
        return true;
    }
    bool end_object() override
    {
        m_keys.pop_back();
        return true;
    }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool key(std::string& name) override
    {
        if (!m_keys.back().insert(name).second)
            found.push_back(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

    std::vector<std::string> found{};

private:
    std::vector<std::set<std::string>> m_keys{};
};

std::string shownJson(const Json& value)
{
    return support::shortened(value.dump(-1, ' ', true, Json::error_handler_t::replace), kLongestShown);
}

/// The value as it could be typed; numbers may stand without quotes.
std::string typed(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.is_number_integer() ? value.dump() : std::string();
}

class Reader
{
public:
    explicit Reader(std::string name) : m_name(std::move(name)) {}

    std::vector<Wanted> read(const std::string& text)
    {
        if (support::nestingOf(text) > support::kDeepestNesting) {
            complain("", "nests too deeply; accepted: objects and arrays at most " +
                             std::to_string(support::kDeepestNesting) + " deep");
            refuse();
        }
        Json document;
        DoubleKeys keys;
        try {
            document = Json::parse(text);
            Json::sax_parse(text, &keys);
        } catch (const Json::exception& error) {
            const std::string what = error.what();  // "[json.exception...] parse error at line 3, column 5: ..."
            const std::size_t begin = what.find("] ");
            complain("", "is no JSON: " + (begin == std::string::npos ? what : what.substr(begin + 2)));
            refuse();
        }
        for (const std::string& key : keys.found)
            complain(support::shortened(key, kLongestShown), "stands twice");
        if (!document.is_object() || !document.contains("settings") || !document["settings"].is_object()) {
            complain("", "has no settings; accepted: {\"settings\": {\"period\": \"1000\", ...}}");
            refuse();
        }
        for (const auto& [key, value] : document.items())
            if (key != "settings")
                complain(support::shortened(key, kLongestShown), "is not known; accepted: settings");
        for (const auto& [key, value] : document["settings"].items())
            take(key, value);
        if (!m_complaints.empty())
            refuse();
        // In the order of the table, so that the same file does the same whatever its order.
        std::sort(m_wanted.begin(), m_wanted.end(),
                  [](const Wanted& a, const Wanted& b) { return a.setting < b.setting; });
        return m_wanted;
    }

private:
    void take(const std::string& key, const Json& value)
    {
        std::vector<std::string> names;
        for (const Setting& setting : settings()) {
            if (!setting.isWritable())
                continue;
            names.push_back(setting.command);
            if (setting.command != key)
                continue;
            const auto plain = setting.plain(typed(value));
            if (plain)
                m_wanted.push_back({&setting, *plain});
            else
                complain("settings." + key, shownJson(value) + " is not accepted; accepted: " + setting.accepted);
            return;
        }
        complain("settings", support::unknownName("setting", support::shortened(key, kLongestShown), names));
    }

    void complain(const std::string& place, const std::string& text)
    {
        m_complaints.push_back(m_name + ": " + (place.empty() ? "" : place + ": ") + text);
    }

    [[noreturn]] void refuse() const
    {
        std::string text;
        for (const std::string& complaint : m_complaints)
            text += (text.empty() ? "" : "\nkelarcctl: ") + complaint;
        throw Failure(kExitUsage, text);
    }

    const std::string m_name;
    std::vector<Wanted> m_wanted{};
    std::vector<std::string> m_complaints{};
};

}  // namespace

std::vector<Wanted> readSettings(const std::string& text, const std::string& name)
{
    return Reader(name).read(text);
}

}  // namespace kelarcctl
