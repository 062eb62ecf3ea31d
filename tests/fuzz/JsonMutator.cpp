// Makes half of the fuzzer's changes to an input. Random changes of bytes rarely leave valid JSON, so this changes one
// value of the document, or of one of its lines.

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using Json = nlohmann::ordered_json;
using Random = std::minstd_rand;

void collect(Json& value, std::vector<Json*>& all)
{
    all.push_back(&value);
    if (value.is_structured())
        for (Json& each : value)
            collect(each, all);
}

template <typename List>
auto& anyOf(List& list, Random& random)
{
    return list[random() % list.size()];
}

void change(Json& document, Random& random)
{
    static const Json values = Json::parse(R"([null, true, false, 0, 1, -1, 34, 1.5, 1e300, 2147483648, -2147483649,
        9007199254740993, -9223372036854775808, 18446744073709551615, "", "x", "on", "\u00ff", "\u0000", [], {}])");
    std::vector<Json*> all;
    collect(document, all);
    Json& value = *anyOf(all, random);
    const Json other = *anyOf(all, random);  // a copy, since it may hold the value or be held by it
    switch (random() % 4) {
    case 0:
        value = other;
        return;
    case 1:
        if (value.is_array())
            value.push_back(value.empty() ? other : anyOf(value, random));
        else if (value.is_object() && other.is_object())
            value.update(other);
        return;
    case 2:
        if (value.is_structured() && !value.empty())
            value.erase(std::next(value.begin(), static_cast<std::ptrdiff_t>(random() % value.size())));
        return;
    default:
        value = anyOf(values, random);
    }
}

/// Of the whole text, or of any line, from its first brace on; empty when that is no JSON.
std::string changed(const std::string& text, Random& random)
{
    std::size_t begin = text.find('{');
    std::size_t end = text.size();
    if (!Json::accept(text)) {
        const std::size_t at = random() % text.size();
        begin = text.find('{', at == 0 ? 0 : text.rfind('\n', at - 1) + 1);
        end = std::min(text.find('\n', begin), text.size());
    }
    if (begin >= end)
        return {};
    Json document = Json::parse(text.substr(begin, end - begin), nullptr, false);
    if (document.is_discarded())
        return {};
    change(document, random);
    return text.substr(0, begin) + document.dump(-1, ' ', false, Json::error_handler_t::replace) + text.substr(end);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    Random random(seed);
    const bool isForBytes = size == 0 || random() % 8 == 0;
    const std::string text = isForBytes ? "" : changed(std::string(data, data + size), random);
    if (text.empty() || text.size() > most)
        return LLVMFuzzerMutate(data, size, most);
    std::copy(text.begin(), text.end(), data);
    return text.size();
}
