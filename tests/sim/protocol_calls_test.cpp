// How calls travel: every function's message as it stands in a line, and every message that is none.

#include "sim/protocol_support.h"

#include <gtest/gtest.h>

namespace {

using arcsim::Argument;
using arcsim::callMessage;
using arcsim::Function;
using arcsim::Json;
using arcsim::lineOf;
using arcsim::Request;
using arcsim::requestOf;
using protocol_test::parsed;
using protocol_test::refusal;

const Argument kSet = Argument::pointer(true);
const Argument kNull = Argument::pointer(false);

struct WrittenCall
{
    Request request;
    std::string call;
    std::string args;
};

const WrittenCall kWritten[] = {
    {{Function::SetNotificationMethod, {Argument::of(1)}}, "ARC_SetNotificationMethod", R"({"method":1})"},
    {{Function::SetNotificationMethod, {Argument::of(-2147483647 - 1)}},
     "ARC_SetNotificationMethod",
     R"({"method":-2147483648})"},
    {{Function::Open, {}}, "ARC_Open", "{}"},
    {{Function::Close, {}}, "ARC_Close", "{}"},
    {{Function::RegisterNotification, {kSet}}, "ARC_RegisterNotification", R"({"handler":"set"})"},
    {{Function::RegisterNotification, {kNull}}, "ARC_RegisterNotification", R"({"handler":null})"},
    {{Function::GetArcVersion, {}}, "ARC_GetArcVersion", "{}"},
    {{Function::GetRilVersion, {kSet, kNull, Argument::of(256)}},
     "ARC_GetRilVersion",
     R"({"primary":"set","secondary":null,"size":256})"},
    {{Function::EnableLogging, {Argument::of(3), Argument::of("a\"\xE9\n")}},
     "ARC_EnableLogging",
     "{\"zone\":3,\"text\":\"a\\\"\xC3\xA9\\n\"}"},
    {{Function::EnableLogging, {Argument::of(0), Argument::of(nullptr)}},
     "ARC_EnableLogging",
     R"({"zone":0,"text":null})"},
    {{Function::AtcTunneling, {Argument::of("AT"), kNull}}, "ARC_AtcTunneling", R"({"command":"AT","answer":null})"},
    {{Function::AtcTunneling, {Argument::of(""), kSet}}, "ARC_AtcTunneling", R"({"command":"","answer":"set"})"},
    {{Function::CheckModuleSetting, {Argument::of("Power/Cpu"), Argument::of(nullptr), kSet, Argument::of(255), kNull}},
     "ARC_CheckModuleSetting",
     R"({"key":"Power/Cpu","value":null,"reply":"set","replySize":255,"writeIndicator":null})"},
    {{Function::CheckModuleSetting, {Argument::of("k"), Argument::of("\"1\""), kNull, Argument::of(0), kSet}},
     "ARC_CheckModuleSetting",
     R"({"key":"k","value":"\"1\"","reply":null,"replySize":0,"writeIndicator":"set"})"},
    {{Function::StartGNSSraw, {kSet, Argument::of(2147483647)}},
     "ARC_StartGNSSraw",
     R"({"text":"set","size":2147483647})"},
    {{Function::StopGNSS, {}}, "ARC_StopGNSS", "{}"},
    {{Function::ForceStopGNSS, {}}, "ARC_ForceStopGNSS", "{}"},
    {{Function::ResetAGNSS, {}}, "ARC_ResetAGNSS", "{}"},
    {{Function::CurrentLSTA, {Argument::of(10), kSet}}, "ARC_CurrentLSTA", R"({"arcTechnologyId":10,"out":"set"})"},
    {{Function::EnableLSTA, {Argument::of(13), Argument::of(true), Argument::of(5)}},
     "ARC_EnableLSTA",
     R"({"arcTechnologyId":13,"enable":true,"parameter":5})"},
    {{Function::EnableLSTA, {Argument::of(13), Argument::of(false), Argument::of(-1)}},
     "ARC_EnableLSTA",
     R"({"arcTechnologyId":13,"enable":false,"parameter":-1})"},
};

TEST(ProtocolCalls, AreWrittenInOneLineEach)
{
    for (const WrittenCall& each : kWritten)
        EXPECT_EQ(lineOf(callMessage(7, each.request, 2)),
                  R"({"id":7,"call":")" + each.call + R"(","args":)" + each.args + ",\"thread\":2}\n");
}

TEST(ProtocolCalls, AreReadAsTheyWereWritten)
{
    for (const WrittenCall& each : kWritten) {
        const Request request = requestOf(parsed(R"({"call":")" + each.call + R"(","args":)" + each.args + "}"));
        EXPECT_EQ(request.function, each.request.function) << each.call;
        ASSERT_EQ(request.arguments.size(), each.request.arguments.size()) << each.call;
        for (std::size_t i = 0; i < request.arguments.size(); ++i) {
            const Argument& expected = each.request.arguments[i];
            const Argument& read = request.arguments[i];
            EXPECT_EQ(read.kind, expected.kind) << each.args << i;
            EXPECT_EQ(read.number, expected.number) << each.args << i;
            EXPECT_EQ(read.set, expected.set) << each.args << i;
            EXPECT_EQ(read.text, expected.text) << each.args << i;
        }
    }
}

TEST(ProtocolCalls, MayHaveTheirParametersInAnyOrder)
{
    const Request request = requestOf(parsed(R"({"args":{"size":5,"text":null},"call":"ARC_StartGNSSraw"})"));
    EXPECT_FALSE(request.arguments[0].set);
    EXPECT_EQ(request.arguments[1].number, 5);
}

TEST(ProtocolCalls, WriteTheHighestNumberOfACallAndOfAThread)
{
    EXPECT_EQ(lineOf(callMessage(9007199254740992, {Function::Open, {}}, 4294967295U)),
              "{\"id\":9007199254740992,\"call\":\"ARC_Open\",\"args\":{},\"thread\":4294967295}\n");
}

std::string refusedCall(const std::string& message)
{
    return refusal([&] { requestOf(parsed(message)); });
}

TEST(ProtocolCalls, NameAllFunctionsWhenOneIsUnknown)
{
    const std::string accepted =
        "; accepted: ARC_SetNotificationMethod, ARC_Open, ARC_Close, ARC_RegisterNotification, ARC_GetArcVersion, "
        "ARC_GetRilVersion, ARC_EnableLogging, ARC_AtcTunneling, ARC_CheckModuleSetting, ARC_StartGNSSraw, "
        "ARC_StopGNSS, ARC_ForceStopGNSS, ARC_ResetAGNSS, ARC_CurrentLSTA, ARC_EnableLSTA";
    EXPECT_EQ(refusedCall(R"({"args":{}})"), "call: missing" + accepted);
    EXPECT_EQ(refusedCall(R"({"call":"arc_Open","args":{}})"), "call: \"arc_Open\" is not accepted" + accepted);
    EXPECT_EQ(refusedCall(R"({"call":"Open","args":{}})"), "call: \"Open\" is not accepted" + accepted);
    EXPECT_EQ(refusedCall(R"({"call":"","args":{}})"), "call: \"\" is not accepted" + accepted);
    EXPECT_EQ(refusedCall(R"({"call":1,"args":{}})"), "call: 1 is not accepted" + accepted);
}

TEST(ProtocolCalls, TakeAnObjectWithTheParametersOfTheirFunctionOnly)
{
    const std::string accepted = "; accepted: an object with the parameters of ARC_StartGNSSraw";
    const auto refused = [](const std::string& args) {
        return refusedCall(R"({"call":"ARC_StartGNSSraw")" + args + "}");
    };
    EXPECT_EQ(refused(""), "args: missing" + accepted);
    EXPECT_EQ(refused(R"(,"args":null)"), "args: null is not accepted" + accepted);
    EXPECT_EQ(refused(R"(,"args":["set",255])"), "args: [\"set\",255] is not accepted" + accepted);
    EXPECT_EQ(refused(R"(,"args":{"text":"set","size":255,"more":1})"),
              "args: {\"text\":\"set\",\"size\":255,\"more\":1} is not accepted" + accepted);
    EXPECT_EQ(refused(R"(,"args":{"text":"set","sise":255})"),
              "size: missing; accepted: a whole number from -2147483648 to 2147483647");
    EXPECT_EQ(refusedCall(R"({"call":"ARC_Open","args":{"size":1}})"),
              "args: {\"size\":1} is not accepted; accepted: an object with the parameters of ARC_Open");
}

TEST(ProtocolCalls, TakeWholeNumbersOfTheRangeOfAnInt)
{
    const auto refused = [](const std::string& value) {
        return refusedCall(R"({"call":"ARC_SetNotificationMethod","args":{)" + value + "}}");
    };
    const std::string accepted = "; accepted: a whole number from -2147483648 to 2147483647";
    EXPECT_EQ(refused(""), "method: missing" + accepted);
    EXPECT_EQ(refused(R"("method":2147483647)"), "accepted");
    EXPECT_EQ(refused(R"("method":-2147483648)"), "accepted");
    for (const char* const value : {"2147483648", "-2147483649", "9007199254740993", "18446744073709551615",
                                    "-9223372036854775808", "1.0", "1.5", "\"1\"", "true", "null", "[1]", "{}"})
        EXPECT_EQ(refused(R"("method":)" + std::string(value)),
                  "method: " + std::string(value) + " is not accepted" + accepted);
}

TEST(ProtocolCalls, TakeFlagsAsTrueOrFalse)
{
    const auto refused = [](const std::string& value) {
        return refusedCall(R"({"call":"ARC_EnableLSTA","args":{"arcTechnologyId":10,"parameter":0)" + value + "}}");
    };
    EXPECT_EQ(refused(""), "enable: missing; accepted: true or false");
    for (const char* const value : {"1", "0", "null", "\"true\"", "[]"})
        EXPECT_EQ(refused(R"(,"enable":)" + std::string(value)),
                  "enable: " + std::string(value) + " is not accepted; accepted: true or false");
}

TEST(ProtocolCalls, TakeTextsOfBytes)
{
    const auto refused = [](const std::string& value) {
        return refusedCall(R"({"call":"ARC_AtcTunneling","args":{"answer":null)" + value + "}}");
    };
    const std::string accepted = "; accepted: a text of characters up to U+00FF";
    EXPECT_EQ(refused(""), "command: missing" + accepted);
    EXPECT_EQ(refused(R"(,"command":null)"), "accepted");
    EXPECT_EQ(refused(R"(,"command":"\u00ff")"), "accepted");
    EXPECT_EQ(refused(R"(,"command":"\u0100")"), "command: \"\xC4\x80\" is not accepted" + accepted);
    EXPECT_EQ(refused(R"(,"command":7)"), "command: 7 is not accepted" + accepted);
    EXPECT_EQ(refused(R"(,"command":"A\u0000T")"),
              "command: \"A\\u0000T\" is not accepted; accepted: a text without a zero in it");
}

TEST(ProtocolCalls, TakePointersAsSetOrNull)
{
    const auto refused = [](const std::string& value) {
        return refusedCall(R"({"call":"ARC_RegisterNotification","args":{)" + value + "}}");
    };
    EXPECT_EQ(refused(""), "handler: missing; accepted: \"set\" or null");
    for (const char* const value : {"\"Set\"", "\"\"", "true", "0", "{}"})
        EXPECT_EQ(refused(R"("handler":)" + std::string(value)),
                  "handler: " + std::string(value) + " is not accepted; accepted: \"set\" or null");
}

TEST(ProtocolCalls, ShowThe60FirstBytesOfARefusedValue)
{
    const std::string value = R"({"call":"ARC_RegisterNotification","args":{"handler":")";
    EXPECT_EQ(refusedCall(value + std::string(58, 'x') + "\"}}"),
              "handler: \"" + std::string(58, 'x') + "\" is not accepted; accepted: \"set\" or null");
    EXPECT_EQ(refusedCall(value + std::string(59, 'x') + "\"}}"),
              "handler: \"" + std::string(59, 'x') + "... is not accepted; accepted: \"set\" or null");
}

}  // namespace
