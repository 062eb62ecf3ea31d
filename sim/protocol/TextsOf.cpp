#include "protocol/TextsOf.h"

#include "protocol/Text.h"

namespace arcsim {

namespace {

/// Recursion is safe: messageOf() limits how deeply lists and objects nest.
template <typename To, typename Change>
To changed(const Json& from, const Change& change)
{
    if (from.is_string())
        return change(from.get_ref<const std::string&>());
    if (from.is_array()) {
        To list = To::array();
        for (const Json& each : from)
            list.push_back(changed<To>(each, change));
        return list;
    }
    if (from.is_object()) {
        To object = To::object();
        for (const auto& [name, value] : from.items())
            object[change(name)] = changed<To>(value, change);
        return object;
    }
    return from;
}

}  // namespace

nlohmann::json withBytes(const Json& message)
{
    return changed<nlohmann::json>(message, [](const std::string& text) {
        const auto bytes = bytesOf(text);
        if (!bytes)
            throw ProtocolError(Json(text).dump() + " is not accepted; accepted: a text of characters up to U+00FF");
        return *bytes;
    });
}

Json withCharacters(const Json& document)
{
    return changed<Json>(document, [](const std::string& text) { return charactersOf(text); });
}

}  // namespace arcsim
