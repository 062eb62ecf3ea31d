#pragma once

#include "scenario/JsonNode.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace arcsim {

/// What one argument or output of a client library's function looks like in JSON.
enum class ValueKind
{
    number,
    flag,
    text,    ///< or null
    place,   ///< "set" or null: where the application wants an output, or its handler
    record,  ///< of ARC_CurrentLSTA
};

struct NamedKind
{
    std::string name;
    ValueKind kind;
};

/// Names and kinds of a function's arguments and outputs, those of arc/ArcRilD.h in the order of declaration.
struct CallShape
{
    std::string function;
    std::vector<NamedKind> arguments;
    std::vector<NamedKind> outputs;
};

const std::vector<CallShape>& callShapes();
/// Null for a function that does not exist.
const CallShape* findShape(const std::string& function);
/// For people: "ARC_Open, ARC_Close, ...".
std::string functionNames();

/// Throw ScenarioError for what a function has not. Every argument has to be there, outputs may be missing.
void requireArguments(const CallShape& shape, const JsonNode& arguments);
void requireOutputs(const CallShape& shape, const JsonNode& outputs);

/// Throws ScenarioError for what is no text of pairs of hexadecimal digits.
std::vector<unsigned char> readHex(const JsonNode& node);

/// A JSON object with these members as far as `values` has them, in this order and one spelling: what is equal has the
/// same text.
std::string textOf(const std::vector<NamedKind>& kinds, const nlohmann::json& values);

/// As it would stand in a program: ARC_CheckModuleSetting("Power/Cpu", null, set, 255, null)
std::string callText(const std::string& function, const nlohmann::ordered_json& arguments);

}  // namespace arcsim
