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
    text,    ///< a text or null
    place,   ///< "set" or null: an output buffer or a handler
    record,  ///< the LSTA record of ARC_CurrentLSTA
};

struct NamedKind
{
    std::string name;
    ValueKind kind;
};

/// Names and kinds of a function's arguments and outputs, in the order in which arc/ArcRilD.h declares them.
struct CallShape
{
    std::string function;
    std::vector<NamedKind> arguments;
    std::vector<NamedKind> outputs;
};

const std::vector<CallShape>& callShapes();
/// Null for a function that does not exist.
const CallShape* findShape(const std::string& function);
/// All function names for a message: "ARC_Open, ARC_Close, ...".
std::string functionNames();

/// Throw ScenarioError for an argument or output that the function does not have. Every argument is required; outputs
/// may be missing.
void requireArguments(const CallShape& shape, const JsonNode& arguments);
void requireOutputs(const CallShape& shape, const JsonNode& outputs);

/// Throws ScenarioError unless the value is a text of pairs of hexadecimal digits.
std::vector<unsigned char> readHex(const JsonNode& node);

/// A JSON object with those of these members that `values` has, in this order and in one spelling: equal objects have
/// equal text.
std::string textOf(const std::vector<NamedKind>& kinds, const nlohmann::json& values);

/// The call as a program would write it: ARC_CheckModuleSetting("Power/Cpu", null, set, 255, null)
std::string callText(const std::string& function, const nlohmann::ordered_json& arguments);

}  // namespace arcsim
