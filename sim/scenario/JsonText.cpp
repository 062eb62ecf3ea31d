#include "scenario/JsonText.h"

#include "scenario/JsonShown.h"
#include "scenario/ScenarioError.h"
#include "scenario/TextPlace.h"
#include "support/Nesting.h"
#include "support/Printable.h"
#include "support/Words.h"

#include <algorithm>
#include <set>
#include <vector>

namespace arcsim {

namespace {

using nlohmann::json;

constexpr std::size_t kLongestComplaint = 200;

[[noreturn]] void refuseAt(const std::string& file, std::size_t line, const std::string& complaint)
{
    throw ScenarioError(file + ":" + std::to_string(line) + ": " + complaint);
}

void requireText(const std::string& file, std::string_view text, std::size_t firstLine)
{
    // The parser would take a zero byte for the end.
    const std::size_t end = std::min(support::lengthOfUtf8(text), text.find('\0'));
    if (end >= text.size())
        return;
    Place place;
    place.line = firstLine;
    for (const char c : text.substr(0, end + 1))
        place.consume(c);
    constexpr const char* kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(text[end]);
    refuseAt(file, place.line,
             "column " + std::to_string(place.column) + ": byte " + kDigits[byte >> 4U] + kDigits[byte & 15U] +
                 " is not accepted; accepted: text " + (byte == 0 ? "without zeros" : "in UTF-8"));
}

/// Checks a text to its end without keeping it, and refuses forbidden content.
class TextCheck : public nlohmann::json_sax<json>
{
public:
    TextCheck(const std::string& file, const Place& place) : m_file(file), m_place(place) {}

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(json::number_integer_t) override { return true; }
    bool number_unsigned(json::number_unsigned_t) override { return true; }
    bool number_float(json::number_float_t, const std::string&) override { return true; }
    bool string(std::string&) override { return true; }
    bool binary(json::binary_t&) override { return true; }
    bool start_object(std::size_t) override { return open(); }
    bool start_array(std::size_t) override { return open(); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string& name) override
    {
        if (!m_keys.back().insert(name).second)
            refuseAt(m_file, m_place.line, "the key " + shown(json(name)) + " is given twice in one object");
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override
    {
        // The parser's message begins with its own line count or an error number.
        std::string what = error.what();
        const std::size_t column = what.find(", column ");
        const std::size_t begin = column == std::string::npos ? what.find("] ") : what.find(": ", column);
        refuseAt(m_file, m_place.line, columnText() + support::shortened(what.substr(begin + 2), kLongestComplaint));
    }

private:
    bool open()
    {
        if (m_keys.size() == support::kDeepestNesting)
            refuseAt(m_file, m_place.line,
                     columnText() + "more nesting is not accepted; accepted: objects and arrays at most " +
                         std::to_string(support::kDeepestNesting) + " deep");
        m_keys.emplace_back();
        return true;
    }
    bool close()
    {
        m_keys.pop_back();
        return true;
    }
    std::string columnText() const
    {
        return "column " + std::to_string(std::max<std::size_t>(m_place.column, 1)) + ": ";
    }

    const std::string& m_file;
    const Place& m_place;
    std::vector<std::set<std::string>> m_keys{};  ///< of the objects that are open; arrays have none
};

}  // namespace

json parseJson(const std::string& file, std::string_view text, std::size_t firstLine)
{
    if (text.size() > kLargestFile)
        throw ScenarioError(file + ": a text of " + std::to_string(text.size()) +
                            " bytes is not accepted; accepted: at most " + std::to_string(kLargestFile) + " bytes");
    requireText(file, text, firstLine);
    Place place;
    place.line = firstLine;
    TextCheck check(file, place);
    const char* const end = text.data() + text.size();
    json::sax_parse(TextIterator(text.data(), place), TextIterator(end, place), &check);
    return json::parse(text);  // second pass, since the parser's own check of keys takes longer than both together
}

}  // namespace arcsim
