#include "protocol/Messages.h"

#include "modem/Requests.h"
#include "protocol/LineBuffer.h"
#include "protocol/Text.h"
#include "support/Nesting.h"

#include <algorithm>
#include <limits>

namespace arcsim {

namespace {

constexpr std::int64_t kHighestId = std::int64_t{1} << 53U;  // many languages lose digits of larger numbers

std::string shown(const Json& value)
{
    constexpr std::size_t kLongest = 60;
    std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    return text.size() > kLongest ? text.substr(0, kLongest) + "..." : text;
}

[[noreturn]] void refuse(std::string_view key, const Json* value, const std::string& accepted)
{
    throw ProtocolError(std::string(key) + ": " + (value == nullptr ? "missing" : shown(*value) + " is not accepted") +
                        "; accepted: " + accepted);
}

const Json* find(const Json& object, std::string_view key)
{
    const auto found = object.find(std::string(key));
    return found == object.end() ? nullptr : &*found;
}

std::int64_t integerOf(const Json& object, std::string_view key, std::int64_t lowest, std::int64_t highest)
{
    const Json* const value = find(object, key);
    const bool fits =
        value != nullptr && value->is_number_integer() &&
        (!value->is_number_unsigned() || value->get<std::uint64_t>() <= static_cast<std::uint64_t>(kHighestId));
    const std::int64_t number = fits ? value->get<std::int64_t>() : 0;
    if (!fits || number < lowest || number > highest)
        refuse(key, value, "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    return number;
}

int intOf(const Json& object, std::string_view key)
{
    return static_cast<int>(integerOf(object, key, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

bool flagOf(const Json& object, std::string_view key)
{
    const Json* const value = find(object, key);
    if (value == nullptr || !value->is_boolean())
        refuse(key, value, "true or false");
    return value->get<bool>();
}

std::string textOf(const Json& object, std::string_view key)
{
    const Json* const value = find(object, key);
    const auto bytes =
        value != nullptr && value->is_string() ? bytesOf(value->get_ref<const std::string&>()) : std::nullopt;
    if (!bytes)
        refuse(key, value, "a text of characters up to U+00FF");
    return *bytes;
}

Argument argumentOf(const Parameter& parameter, const Json& arguments)
{
    const Json* const value = find(arguments, parameter.name);
    switch (parameter.kind) {
    case Argument::Kind::number:
        return Argument::of(intOf(arguments, parameter.name));
    case Argument::Kind::flag:
        return Argument::of(flagOf(arguments, parameter.name));
    case Argument::Kind::text: {
        if (value != nullptr && value->is_null())
            return Argument::of(nullptr);
        const std::string text = textOf(arguments, parameter.name);
        if (text.find('\0') != std::string::npos)
            refuse(parameter.name, value, "a text without a zero in it");
        return Argument::of(text.c_str());
    }
    case Argument::Kind::pointer:
        break;
    }
    if (value == nullptr || !(value->is_null() || *value == "set"))
        refuse(parameter.name, value, "\"set\" or null");
    return Argument::pointer(!value->is_null());
}

Json jsonOf(const Argument& argument)
{
    switch (argument.kind) {
    case Argument::Kind::number:
        return argument.number;
    case Argument::Kind::flag:
        return argument.isTrue();
    case Argument::Kind::text:
        return argument.set ? Json(charactersOf(argument.text)) : Json(nullptr);
    case Argument::Kind::pointer:
        break;
    }
    return argument.set ? Json("set") : Json(nullptr);
}

/// The names of a function's text outputs; empty where it has none.
struct TextNames
{
    std::string_view first{};
    std::string_view second{};
};
TextNames textNamesOf(Function function)
{
    switch (function) {
    case Function::GetArcVersion:
        return {"version", {}};
    case Function::GetRilVersion:
        return {"primary", "secondary"};
    case Function::AtcTunneling:
        return {"answer", {}};
    case Function::CheckModuleSetting:
        return {"reply", {}};
    case Function::StartGNSSraw:
        return {"text", {}};
    default:
        return {};
    }
}

std::string requestNames()
{
    std::string names;
    for (const modem::RequestKind& kind : modem::kRequests)
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    return names;
}

}  // namespace

Json messageOf(std::string_view line)
{
    if (support::nestingOf(line) > support::kDeepestNesting)
        throw ProtocolError("a line nests too deeply; accepted: objects and arrays at most " +
                            std::to_string(support::kDeepestNesting) + " deep");
    Json message;
    if (line.find('\0') == std::string_view::npos)  // the parser would take a zero byte for the end
        message = Json::parse(line, nullptr, false);
    if (!message.is_object())
        throw ProtocolError("a line is no JSON object; accepted: one object a line, at most " +
                            std::to_string(kLongestLine) + " bytes");
    return message;
}

std::string lineOf(const Json& message)
{
    return message.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json helloMessage(const Hello& hello)
{
    return {{"hello", "client"},
            {"name", charactersOf(hello.name)},
            {"pid", hello.pid},
            {"open", hello.isOpen},
            {"handler", hello.hasHandler}};
}

Hello helloOf(const Json& message)
{
    if (message.at("hello") != "client")
        refuse("hello", find(message, "hello"), "\"client\"");
    return {textOf(message, "name"), intOf(message, "pid"), flagOf(message, "open"), flagOf(message, "handler")};
}

std::int64_t idOf(const Json& message)
{
    return integerOf(message, "id", 0, kHighestId);
}

int threadOf(const Json& message)
{
    if (find(message, "thread") == nullptr)
        return 0;
    return static_cast<int>(integerOf(message, "thread", 0, std::numeric_limits<int>::max()));
}

Json argumentsOf(const Request& request)
{
    Json arguments = Json::object();
    const std::vector<Parameter>& parameters = parametersOf(request.function);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        arguments[std::string(parameters[i].name)] = jsonOf(request.arguments[i]);
    return arguments;
}

Request requestOf(const Json& message)
{
    const Json* const name = find(message, "call");
    const auto index =
        name != nullptr && name->is_string() ? modem::findRequest(name->get_ref<const std::string&>()) : std::nullopt;
    if (!index)
        refuse("call", name, requestNames());
    Request request{static_cast<Function>(*index), {}};
    const std::vector<Parameter>& parameters = parametersOf(request.function);
    const Json* const arguments = find(message, "args");
    if (arguments == nullptr || !arguments->is_object() || arguments->size() > parameters.size())
        refuse("args", arguments, "an object with the parameters of " + name->get<std::string>());
    for (const Parameter& parameter : parameters)
        request.arguments.push_back(argumentOf(parameter, *arguments));
    return request;
}

Json callMessage(std::int64_t id, const Request& request, unsigned thread)
{
    return {{"id", id},
            {"call", modem::kRequests[indexOf(request.function)].name},
            {"args", argumentsOf(request)},
            {"thread", thread}};
}

Json outputsOf(Function function, const modem::Reply& reply)
{
    const TextNames names = textNamesOf(function);
    Json outputs = Json::object();
    if (reply.text && !names.first.empty())
        outputs[std::string(names.first)] = charactersOf(*reply.text);
    if (reply.secondText && !names.second.empty())
        outputs[std::string(names.second)] = charactersOf(*reply.secondText);
    if (reply.indicator)
        outputs["writeIndicator"] = *reply.indicator;
    if (reply.lsta)
        outputs["record"] = {
            {"indicator", reply.lsta->indicator}, {"status", reply.lsta->status}, {"value", reply.lsta->value}};
    return outputs;
}

Json answerMessage(std::int64_t id, Function function, const modem::Reply& reply)
{
    return {{"id", id}, {"code", reply.code}, {"out", outputsOf(function, reply)}};
}

modem::Reply replyOf(Function function, const Json& message)
{
    modem::Reply reply;
    reply.code = intOf(message, "code");
    const Json* const outputs = find(message, "out");
    if (outputs == nullptr || !outputs->is_object())
        refuse("out", outputs, "an object");
    const TextNames names = textNamesOf(function);
    if (!names.first.empty() && find(*outputs, names.first) != nullptr)
        reply.text = textOf(*outputs, names.first);
    if (!names.second.empty() && find(*outputs, names.second) != nullptr)
        reply.secondText = textOf(*outputs, names.second);
    if (find(*outputs, "writeIndicator") != nullptr)
        reply.indicator = intOf(*outputs, "writeIndicator");
    if (const Json* const record = find(*outputs, "record")) {
        const Json* const value = record->is_object() ? find(*record, "value") : nullptr;
        if (value == nullptr || !(value->is_number() || value->is_null()))
            refuse("record", record, "an object with indicator, status and value");
        const double level = value->is_null() ? std::numeric_limits<double>::quiet_NaN() : value->get<double>();
        reply.lsta = modem::Lsta{intOf(*record, "indicator"), intOf(*record, "status"), level};
    }
    return reply;
}

Json eventMessage(const EventMessage& event)
{
    return {{"event", event.id}, {"data", hexOf(event.payload)}};
}

EventMessage eventOf(const Json& message)
{
    const auto payload = bytesOfHex(textOf(message, "data"));
    if (!payload)
        refuse("data", find(message, "data"), "pairs of hexadecimal digits");
    return {intOf(message, "event"), *payload};
}

}  // namespace arcsim
