#include "scenario/JsonShown.h"

#include "support/Words.h"

#include <algorithm>

namespace arcsim {

namespace {

using nlohmann::json;

constexpr std::size_t kLongestShownValue = 60;
constexpr std::size_t kLongestShownKey = 40;

std::string dumped(const json& value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

/// Writes no more than will be shown, so large and deeply nested values are no problem.
void write(const json& value, std::string& text)
{
    if (text.size() > kLongestShownValue)
        return;
    if (value.is_string()) {
        text += dumped(support::shortened(value.get_ref<const std::string&>(), kLongestShownValue + 4));
    } else if (value.is_array()) {
        text += '[';
        for (std::size_t i = 0; i < value.size() && text.size() <= kLongestShownValue; ++i) {
            text += i == 0 ? "" : ",";
            write(value[i], text);
        }
        text += ']';
    } else if (value.is_object()) {
        text += '{';
        for (auto member = value.begin(); member != value.end() && text.size() <= kLongestShownValue; ++member) {
            text += member == value.begin() ? "" : ",";
            write(member.key(), text);
            text += ':';
            write(member.value(), text);
        }
        text += '}';
    } else {
        text += dumped(value);
    }
}

}  // namespace

std::string shown(const json& value)
{
    std::string text;
    write(value, text);
    return support::shortened(text, kLongestShownValue);
}

std::string shownKey(const std::string& key)
{
    const bool plain = !key.empty() && key.size() <= kLongestShownKey &&
                       std::all_of(key.begin(), key.end(),
                                   [](char c) { return c > ' ' && c < 0x7F && c != '"' && c != '.' && c != '['; });
    return plain ? key : support::shortened(dumped(key), kLongestShownKey);
}

}  // namespace arcsim
