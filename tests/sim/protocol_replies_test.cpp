// How answers travel: the outputs of every function, and what is no answer.

#include "sim/protocol_support.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using arcsim::answerMessage;
using arcsim::Function;
using arcsim::lineOf;
using arcsim::replyOf;
using arcsim::modem::Lsta;
using arcsim::modem::Reply;
using protocol_test::parsed;
using protocol_test::refusal;

/// With everything that any function may put out.
Reply fullReply()
{
    return {33, "one", "two", 1, Lsta{1000, 1, 41.5}};
}

std::string outputs(Function function)
{
    return lineOf(answerMessage(7, function, fullReply()));
}

TEST(ProtocolReplies, NameTheTextsAsTheFunctionDoes)
{
    const std::string begin = R"({"id":7,"code":33,"out":{)";
    const std::string end = "\"writeIndicator\":1,\"record\":{\"indicator\":1000,\"status\":1,\"value\":41.5}}}\n";
    EXPECT_EQ(outputs(Function::GetArcVersion), begin + R"("version":"one",)" + end);
    EXPECT_EQ(outputs(Function::GetRilVersion), begin + R"("primary":"one","secondary":"two",)" + end);
    EXPECT_EQ(outputs(Function::AtcTunneling), begin + R"("answer":"one",)" + end);
    EXPECT_EQ(outputs(Function::CheckModuleSetting), begin + R"("reply":"one",)" + end);
    EXPECT_EQ(outputs(Function::StartGNSSraw), begin + R"("text":"one",)" + end);
    for (const Function function :
         {Function::SetNotificationMethod, Function::Open, Function::Close, Function::RegisterNotification,
          Function::EnableLogging, Function::StopGNSS, Function::ForceStopGNSS, Function::ResetAGNSS,
          Function::CurrentLSTA, Function::EnableLSTA})
        EXPECT_EQ(outputs(function), begin + end);
}

TEST(ProtocolReplies, SayOnlyWhatIsToBeWritten)
{
    EXPECT_EQ(lineOf(answerMessage(0, Function::Open, {})), "{\"id\":0,\"code\":0,\"out\":{}}\n");
    EXPECT_EQ(lineOf(answerMessage(1, Function::GetRilVersion, {0, {}, "two", {}, {}})),
              "{\"id\":1,\"code\":0,\"out\":{\"secondary\":\"two\"}}\n");
    EXPECT_EQ(lineOf(answerMessage(2, Function::CheckModuleSetting, {0, {}, {}, 0, {}})),
              "{\"id\":2,\"code\":0,\"out\":{\"writeIndicator\":0}}\n");
    EXPECT_EQ(lineOf(answerMessage(3, Function::AtcTunneling, {-5, "\xFF\r\n", {}, {}, {}})),
              "{\"id\":3,\"code\":-5,\"out\":{\"answer\":\"\xC3\xBF\\r\\n\"}}\n");
}

TEST(ProtocolReplies, AreReadWithEveryOutput)
{
    const Reply versions =
        replyOf(Function::GetRilVersion, parsed(R"({"id":1,"code":33,"out":{"primary":"a\u00ff","secondary":""}})"));
    EXPECT_EQ(versions.code, 33);
    EXPECT_EQ(versions.text, "a\xFF");
    EXPECT_EQ(versions.secondText, "");
    EXPECT_EQ(versions.indicator, std::nullopt);
    EXPECT_FALSE(versions.lsta);

    const Reply written =
        replyOf(Function::CheckModuleSetting, parsed(R"({"code":0,"out":{"reply":"\"1\"","writeIndicator":-3}})"));
    EXPECT_EQ(written.text, "\"1\"");
    EXPECT_EQ(written.indicator, -3);

    const Reply lsta = replyOf(Function::CurrentLSTA,
                               parsed(R"({"code":0,"out":{"record":{"indicator":1003,"status":2,"value":-1e300}}})"));
    ASSERT_TRUE(lsta.lsta);
    EXPECT_EQ(lsta.lsta->indicator, 1003);
    EXPECT_EQ(lsta.lsta->status, 2);
    EXPECT_EQ(lsta.lsta->value, -1e300);
}

TEST(ProtocolReplies, AreReadUnderTheNamesOfTheirFunction)
{
    const auto textOf = [](Function function, const char* outputs) {
        return replyOf(function, parsed(std::string(R"({"code":0,"out":)") + outputs + "}")).text;
    };
    EXPECT_EQ(textOf(Function::GetArcVersion, R"({"version":"v"})"), "v");
    EXPECT_EQ(textOf(Function::AtcTunneling, R"({"answer":"OK"})"), "OK");
    EXPECT_EQ(textOf(Function::StartGNSSraw, R"({"text":"/dev/pts/3"})"), "/dev/pts/3");
    EXPECT_EQ(textOf(Function::StartGNSSraw, R"({"reply":"x","answer":"y"})"), std::nullopt);
    EXPECT_EQ(textOf(Function::Open, R"({"text":"x"})"), std::nullopt);
    EXPECT_EQ(textOf(Function::Open, "{}"), std::nullopt);
}

TEST(ProtocolReplies, CarryALevelThatIsNoNumberAsNull)
{
    Reply reply;
    reply.lsta = Lsta{1000, 1, std::nan("")};
    const std::string line = lineOf(answerMessage(1, Function::CurrentLSTA, reply));
    EXPECT_EQ(line, "{\"id\":1,\"code\":0,\"out\":{\"record\":{\"indicator\":1000,\"status\":1,\"value\":null}}}\n");
    EXPECT_TRUE(std::isnan(replyOf(Function::CurrentLSTA, parsed(line)).lsta->value));
}

std::string refused(Function function, const std::string& message)
{
    return refusal([&] { replyOf(function, parsed(message)); });
}

TEST(ProtocolReplies, HaveACodeAndOutputs)
{
    const std::string number = "; accepted: a whole number from -2147483648 to 2147483647";
    EXPECT_EQ(refused(Function::Open, R"({"out":{}})"), "code: missing" + number);
    EXPECT_EQ(refused(Function::Open, R"({"code":"0","out":{}})"), "code: \"0\" is not accepted" + number);
    EXPECT_EQ(refused(Function::Open, R"({"code":2147483648,"out":{}})"), "code: 2147483648 is not accepted" + number);
    EXPECT_EQ(refused(Function::Open, R"({"code":0})"), "out: missing; accepted: an object");
    EXPECT_EQ(refused(Function::Open, R"({"code":0,"out":[]})"), "out: [] is not accepted; accepted: an object");
    EXPECT_EQ(refused(Function::Open, R"({"code":-2147483648,"out":{}})"), "accepted");
}

TEST(ProtocolReplies, HaveOutputsOfTheirKind)
{
    const std::string text = "; accepted: a text of characters up to U+00FF";
    const auto refusedOutput = [](Function function, const std::string& outputs) {
        return refused(function, R"({"code":0,"out":)" + outputs + "}");
    };
    EXPECT_EQ(refusedOutput(Function::GetArcVersion, R"({"version":null})"), "version: null is not accepted" + text);
    EXPECT_EQ(refusedOutput(Function::GetRilVersion, R"({"primary":1})"), "primary: 1 is not accepted" + text);
    EXPECT_EQ(refusedOutput(Function::GetRilVersion, R"({"secondary":false})"),
              "secondary: false is not accepted" + text);
    EXPECT_EQ(refusedOutput(Function::AtcTunneling, R"({"answer":"\u20ac"})"),
              "answer: \"\xE2\x82\xAC\" is not accepted" + text);
    EXPECT_EQ(refusedOutput(Function::CheckModuleSetting, R"({"writeIndicator":1.5})"),
              "writeIndicator: 1.5 is not accepted; accepted: a whole number from -2147483648 to 2147483647");
}

TEST(ProtocolReplies, HaveRecordsWithAllOfTheirMembers)
{
    const auto refusedRecord = [](const std::string& record) {
        return refused(Function::CurrentLSTA, R"({"code":0,"out":{"record":)" + record + "}}");
    };
    const std::string record = "; accepted: an object with indicator, status and value";
    const std::string number = "; accepted: a whole number from -2147483648 to 2147483647";
    EXPECT_EQ(refusedRecord("null"), "record: null is not accepted" + record);
    EXPECT_EQ(refusedRecord("[]"), "record: [] is not accepted" + record);
    EXPECT_EQ(refusedRecord(R"({"indicator":1,"status":1})"),
              "record: {\"indicator\":1,\"status\":1} is not accepted" + record);
    EXPECT_EQ(refusedRecord(R"({"indicator":1,"status":1,"value":"1"})"),
              "record: {\"indicator\":1,\"status\":1,\"value\":\"1\"} is not accepted" + record);
    EXPECT_EQ(refusedRecord(R"({"status":1,"value":1})"), "indicator: missing" + number);
    EXPECT_EQ(refusedRecord(R"({"indicator":1,"value":1})"), "status: missing" + number);
    EXPECT_EQ(refusedRecord(R"({"indicator":1,"status":true,"value":1})"), "status: true is not accepted" + number);
}

}  // namespace
