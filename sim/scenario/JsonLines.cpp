#include "scenario/JsonLines.h"

#include "scenario/TextPlace.h"

#include <string>
#include <vector>

namespace arcsim {

namespace {

using nlohmann::json;

/// Walks the text with the parser and the finished document in parallel, until it reaches the value sought.
class LineFinder : public nlohmann::json_sax<json>
{
public:
    LineFinder(LineOf what, const json& part, const json& document, const Place& place)
        : m_what(what), m_part(&part), m_document(&document), m_place(place)
    {
    }
    std::size_t line() const { return m_line; }

    bool null() override { return meet(next()); }
    bool boolean(bool) override { return meet(next()); }
    bool number_integer(json::number_integer_t) override { return meet(next()); }
    bool number_unsigned(json::number_unsigned_t) override { return meet(next()); }
    bool number_float(json::number_float_t, const std::string&) override { return meet(next()); }
    bool string(std::string&) override { return meet(next()); }
    bool binary(json::binary_t&) override { return meet(next()); }
    bool start_object(std::size_t) override { return enter(next()); }
    bool start_array(std::size_t) override { return enter(next()); }
    bool end_object() override { return leave(); }
    bool end_array() override { return leave(); }
    bool key(std::string& name) override
    {
        m_key = name;
        return m_what != LineOf::key || &m_open.back().value->at(name) != m_part || found();
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

private:
    struct Container
    {
        const json* value = nullptr;
        std::size_t elements = 0;
    };

    const json* next()
    {
        if (m_open.empty())
            return m_document;
        Container& in = m_open.back();
        return in.value->is_array() ? &in.value->at(in.elements++) : &in.value->at(m_key);
    }
    bool meet(const json* value) { return m_what != LineOf::value || value != m_part || found(); }
    bool enter(const json* value)
    {
        m_open.push_back({value, 0});
        return meet(value);
    }
    bool leave()
    {
        m_open.pop_back();
        return true;
    }
    bool found()
    {
        m_line = m_place.line;
        return false;  // no need to read on
    }

    LineOf m_what;
    const json* m_part;
    const json* m_document;
    const Place& m_place;
    std::vector<Container> m_open{};
    std::string m_key{};
    std::size_t m_line = 0;
};

}  // namespace

std::size_t lineOf(LineOf what, const json& part, const json& document, std::string_view text)
{
    Place place;
    LineFinder finder(what, part, document, place);
    const char* const end = text.data() + text.size();
    json::sax_parse(TextIterator(text.data(), place), TextIterator(end, place), &finder);
    return finder.line();
}

}  // namespace arcsim
