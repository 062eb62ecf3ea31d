#include "kelarcctl/SettingsFile.h"

#include "kelarcctl/CommandLine.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Output.h"

#include "support/NearestName.h"
#include "support/Nesting.h"
#include "support/Words.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

namespace kelarcctl {

namespace {

/// Finds duplicate keys, which are ambiguous. The parser's own callback is not used, since its time grows with the
/// square of a list's length.
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
    return support::shortened(value.dump(-1, ' ', true, Json::error_handler_t::replace), support::kLongestShown);
}

/// The value as a user could type it. Numbers and switches may come without quotes, numbers in quotes also with their
/// unit.
std::string typed(const Setting& setting, const Json& value)
{
    if (value.is_boolean())
        return setting.shape != Setting::Shape::flag ? "" : value.get<bool>() ? "on" : "off";
    if (value.is_number_integer())
        return value.dump();
    if (value.is_number_float() && std::abs(value.get<double>()) < 1e6 &&
        std::trunc(value.get<double>()) == value.get<double>())
        return std::to_string(value.get<long>());
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    const std::string unit = " " + setting.unit;
    const bool hasUnit = !setting.unit.empty() && text.size() > unit.size() &&
                         support::sameLetters(std::string_view(text).substr(text.size() - unit.size()), unit);
    return hasUnit ? text.substr(0, text.size() - unit.size()) : text;
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
        if (text.find('\0') != std::string::npos) {  // the parser would take a zero byte for the end
            complain("", "is no JSON: it has a byte 0");
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
            complain(support::shortened(key, support::kLongestShown), "stands twice");
        if (!document.is_object() || document.empty() ||
            (document.contains("settings") && !document["settings"].is_object())) {
            complain("", "has no settings; accepted: {\"settings\": {\"period\": 1000, \"sbas\": true, ...}}");
            refuse();
        }
        if (document.contains("settings")) {
            for (const auto& [key, value] : document.items())
                if (key != "settings" && key != "utc")  // "utc" is the time of reading
                    complain(support::shortened(key, support::kLongestShown), "is not known; accepted: settings");
            takeAll("settings", "", document["settings"]);
        } else {
            takeAll("settings", "", document);
        }
        if (!m_complaints.empty())
            refuse();
        // In the order of the table, so that the order of the file does not matter.
        std::sort(m_wanted.begin(), m_wanted.end(),
                  [](const Wanted& a, const Wanted& b) { return a.setting < b.setting; });
        return m_wanted;
    }

private:
    /// Inside an object "system", the keys are just the names of the systems.
    void takeAll(const std::string& place, const std::string& group, const Json& values)
    {
        for (const auto& [key, value] : values.items()) {
            const std::string name = group + key;
            if (group.empty() && support::sameLetters(key, "system") && value.is_object())
                takeAll(place, "system ", value);
            else if (!m_taken.insert(support::lowerCase(name)).second)
                complain(support::shortened(name, support::kLongestShown), "stands twice");
            else
                take(name, value);
        }
    }

    void take(const std::string& key, const Json& value)
    {
        std::vector<std::string> names;
        for (const Setting& setting : settings()) {
            if (!setting.isWritable())
                continue;
            names.push_back(setting.command);
            if (!support::sameLetters(setting.command, key))
                continue;
            const auto plain = setting.plain(typed(setting, value));
            if (plain)
                m_wanted.push_back({&setting, *plain});
            else
                complain("settings." + setting.command,
                         shownJson(value) + " is not accepted; accepted: " + setting.accepted);
            return;
        }
        complain("settings", support::unknownName("setting", support::shortened(key, support::kLongestShown), names));
    }

    void complain(const std::string& place, const std::string& text)
    {
        m_complaints.push_back(m_name + ": " + (place.empty() ? "" : place + ": ") + text);
    }

    [[noreturn]] void refuse() const
    {
        Trouble trouble;
        trouble.kind = Trouble::Kind::usage;
        trouble.text = m_complaints.front();
        trouble.notes.assign(m_complaints.begin() + 1, m_complaints.end());
        throw TroubleFailure(kExitUsage, trouble);
    }

    const std::string m_name;
    std::vector<Wanted> m_wanted{};
    std::set<std::string> m_taken{};
    std::vector<std::string> m_complaints{};
};

}  // namespace

std::vector<Wanted> readSettings(const std::string& text, const std::string& name)
{
    return Reader(name).read(text);
}

}  // namespace kelarcctl
