#include "arcsim/CallShape.h"

#include "host/Request.h"
#include "modem/Hex.h"
#include "modem/Requests.h"

#include <algorithm>
#include <limits>

namespace arcsim {

namespace {

using nlohmann::ordered_json;

constexpr auto kText = ValueKind::text;

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
    if (node.has("bytes") && readHex(node.at("bytes", "")).size() != 64)
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

ValueKind kindOf(Argument::Kind kind)
{
    switch (kind) {
    case Argument::Kind::number:
        break;
    case Argument::Kind::flag:
        return ValueKind::flag;
    case Argument::Kind::text:
        return ValueKind::text;
    case Argument::Kind::pointer:
        return ValueKind::place;
    }
    return ValueKind::number;
}

std::vector<NamedKind> outputsOf(Function function)
{
    switch (function) {
    case Function::GetArcVersion:
        return {{"version", kText}};
    case Function::GetRilVersion:
        return {{"primary", kText}, {"secondary", kText}};
    case Function::AtcTunneling:
        return {{"answer", kText}};
    case Function::CheckModuleSetting:
        return {{"reply", kText}, {"writeIndicator", ValueKind::number}};
    case Function::StartGNSSraw:
        return {{"text", kText}};
    case Function::CurrentLSTA:
        return {{"record", ValueKind::record}};
    default:
        return {};
    }
}

std::string valueText(ValueKind kind, const ordered_json& value)
{
    return kind == ValueKind::place && value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

const std::vector<CallShape>& callShapes()
{
    static const auto* const shapes = [] {
        auto* const made = new std::vector<CallShape>;
        for (std::size_t index = 0; index < kFunctions; ++index) {
            const auto function = static_cast<Function>(index);
            CallShape shape{std::string(modem::kRequests[index].name), {}, outputsOf(function)};
            for (const Parameter& parameter : parametersOf(function))
                shape.arguments.push_back({std::string(parameter.name), kindOf(parameter.kind)});
            made->push_back(std::move(shape));
        }
        return made;
    }();
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

std::vector<unsigned char> readHex(const JsonNode& node)
{
    const char* const accepted = "pairs of hexadecimal digits";
    const auto bytes = bytesOfHex(node.text(accepted));
    if (!bytes)
        node.refuse(accepted);
    return *bytes;
}

std::string textOf(const std::vector<NamedKind>& kinds, const nlohmann::json& values)
{
    ordered_json inOrder = ordered_json::object();
    for (const NamedKind& each : kinds) {
        const auto found = values.find(each.name);
        if (found == values.end())
            continue;
        if (each.kind == ValueKind::number && found->is_number())
            inOrder[each.name] = found->get<long long>();  // 1.0 and 1e0 are 1
        else
            inOrder[each.name] = *found;
    }
    return inOrder.dump();
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
