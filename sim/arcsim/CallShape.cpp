#include "arcsim/CallShape.h"

#include <algorithm>
#include <limits>

namespace arcsim {

namespace {

using nlohmann::ordered_json;

constexpr auto kNumber = ValueKind::number;
constexpr auto kText = ValueKind::text;
constexpr auto kPlace = ValueKind::place;

std::vector<std::string> namesOf(const std::vector<NamedKind>& kinds)
{
    std::vector<std::string> names;
    for (const NamedKind& each : kinds)
        names.push_back(each.name);
    return names;
}

void requireRecord(const JsonNode& node)
{
    constexpr long long highest = std::numeric_limits<int>::max();
    node.requireKeys({"indicator", "status", "value", "bytes"});
    node.at("indicator", "a number").integer(-highest - 1, highest);
    node.at("status", "a number").integer(-highest - 1, highest);
    const JsonNode value = node.at("value", "a number or null");
    if (!value.isNull())
        value.number(std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max());
    if (node.has("bytes") && bytesOfHex(node.at("bytes", "")).size() != 64)
        node.at("bytes", "").refuse("64 bytes as pairs of hexadecimal digits");
}

void requireKind(ValueKind kind, const JsonNode& node)
{
    constexpr long long highest = std::numeric_limits<int>::max();
    switch (kind) {
    case ValueKind::number:
        node.integer(-highest - 1, highest);
        break;
    case ValueKind::flag:
        node.flag();
        break;
    case ValueKind::text:
        if (!node.isNull())
            node.text("a text or null");
        break;
    case ValueKind::place:
        if (!node.isNull() && node.text("\"set\" or null") != "set")
            node.refuse("\"set\" or null");
        break;
    case ValueKind::record:
        requireRecord(node);
        break;
    }
}

std::string valueText(ValueKind kind, const ordered_json& value)
{
    return kind == ValueKind::place && value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

const std::vector<CallShape>& callShapes()
{
    static const auto* const shapes = new std::vector<CallShape>{
        {"ARC_SetNotificationMethod", {{"method", kNumber}}, {}},
        {"ARC_Open", {}, {}},
        {"ARC_Close", {}, {}},
        {"ARC_RegisterNotification", {{"handler", kPlace}}, {}},
        {"ARC_GetArcVersion", {}, {{"version", kText}}},
        {"ARC_GetRilVersion",
         {{"primary", kPlace}, {"secondary", kPlace}, {"size", kNumber}},
         {{"primary", kText}, {"secondary", kText}}},
        {"ARC_EnableLogging", {{"zone", kNumber}, {"text", kText}}, {}},
        {"ARC_AtcTunneling", {{"command", kText}, {"answer", kPlace}}, {{"answer", kText}}},
        {"ARC_CheckModuleSetting",
         {{"key", kText}, {"value", kText}, {"reply", kPlace}, {"replySize", kNumber}, {"writeIndicator", kPlace}},
         {{"reply", kText}, {"writeIndicator", kNumber}}},
        {"ARC_StartGNSSraw", {{"text", kPlace}, {"size", kNumber}}, {{"text", kText}}},
        {"ARC_StopGNSS", {}, {}},
        {"ARC_ForceStopGNSS", {}, {}},
        {"ARC_ResetAGNSS", {}, {}},
        {"ARC_CurrentLSTA", {{"arcTechnologyId", kNumber}, {"out", kPlace}}, {{"record", ValueKind::record}}},
        {"ARC_EnableLSTA", {{"arcTechnologyId", kNumber}, {"enable", ValueKind::flag}, {"parameter", kNumber}}, {}},
    };
    return *shapes;
}

const CallShape* findShape(const std::string& function)
{
    const auto& shapes = callShapes();
    const auto found =
        std::find_if(shapes.begin(), shapes.end(), [&](const CallShape& shape) { return shape.function == function; });
    return found == shapes.end() ? nullptr : &*found;
}

std::string functionNames()
{
    std::string names;
    for (const CallShape& shape : callShapes())
        names += (names.empty() ? "" : ", ") + shape.function;
    return names;
}

void requireArguments(const CallShape& shape, const JsonNode& arguments)
{
    arguments.requireKeys(namesOf(shape.arguments));
    for (const NamedKind& each : shape.arguments)
        requireKind(each.kind, arguments.at(each.name, "an argument of " + shape.function));
}

void requireOutputs(const CallShape& shape, const JsonNode& outputs)
{
    outputs.requireKeys(namesOf(shape.outputs));
    for (const NamedKind& each : shape.outputs)
        if (outputs.has(each.name))
            requireKind(each.kind, outputs.at(each.name, ""));
}

std::vector<unsigned char> bytesOfHex(const JsonNode& node)
{
    const char* const accepted = "pairs of hexadecimal digits";
    const std::string digits = node.text(accepted);
    if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        node.refuse(accepted);
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::string callText(const std::string& function, const ordered_json& arguments)
{
    std::string text;
    const CallShape* const shape = findShape(function);
    if (shape == nullptr) {
        for (const auto& argument : arguments)
            text += (text.empty() ? "" : ", ") + argument.dump();
    } else {
        for (const NamedKind& each : shape->arguments) {
            const auto found = arguments.find(each.name);
            text += (text.empty() ? "" : ", ") +
                    (found == arguments.end() ? "missing" : valueText(each.kind, found.value()));
        }
    }
    return function + "(" + text + ")";
}

}  // namespace arcsim
