#include "scenario/EventFile.h"
#include "scenario/FaultFile.h"
#include "scenario/JsonText.h"
#include "scenario/SystemNames.h"
#include "sim/scenario_support.h"

#include <gtest/gtest.h>

namespace {

using arcsim::JsonNode;
using arcsim::ScenarioError;
using nlohmann::json;
using scenario_test::errorOf;

std::string nested(int depth, const std::string& inmost)
{
    std::string text = inmost;
    for (int i = 0; i < depth; ++i)
        text = (i % 2 == 0 ? "[" : "{\"a\":") + text + (i % 2 == 0 ? "]" : "}");
    return text;
}

TEST(ScenarioLine, IsThatOfTheValue)
{
    EXPECT_EQ(errorOf("{\n\n  \"seed\":\n\n  -1\n}"),
              "s.json:5: seed: -1 is not accepted; accepted: a whole number from 0 to 4294967295");
    EXPECT_EQ(errorOf("{\n\"latencies\": 1}"), "s.json:2: latencies: 1 is not accepted; accepted: true or false");
    EXPECT_EQ(errorOf("{\n\"latencies\": 1\n}"), "s.json:2: latencies: 1 is not accepted; accepted: true or false");
    EXPECT_EQ(errorOf("{\r\n\"latencies\": 1\r\n}"), "s.json:2: latencies: 1 is not accepted; accepted: true or false");
    EXPECT_EQ(errorOf("{\"latencies\":\nnull\n\n}"),
              "s.json:2: latencies: null is not accepted; accepted: true or false");
    EXPECT_EQ(errorOf("{\"latencies\":\n\"\"}"), "s.json:2: latencies: \"\" is not accepted; accepted: true or false");
    EXPECT_EQ(errorOf("{\"firstFix\":\n[\n1]}"),
              "s.json:2: firstFix: [1] is not accepted; accepted: an object with the keys coldMs, hotMs");
    EXPECT_EQ(errorOf("\n\n7"),
              "s.json:3: 7 is not accepted; accepted: an object with the keys $schema, seed, startUtc, "
              "latencies, engineStartMs, firstFix, settings, faults, events, lsta, outages, route, "
              "satellites, jamming, noFix, replay");
}

TEST(ScenarioLine, IsThatOfTheRightOneOfManyEqualValues)
{
    EXPECT_EQ(errorOf("{\"noFix\": [\n{\"fromMs\": 5, \"untilMs\": 9},\n{\"fromMs\": 1,\n\"untilMs\": 1}\n,\n"
                      "{\"fromMs\": 1,\n\"untilMs\": 1}]}"),
              "s.json:4: noFix[1].untilMs: 1 is not accepted; accepted: a time after the beginning at 1");
    EXPECT_EQ(errorOf("{\"firstFix\": {\"hotMs\": 0},\n\"outages\": [[0],\n0]}"),
              "s.json:2: outages[0]: [0] is not accepted; accepted: an object with the keys atMs, forMs");
}

TEST(ScenarioLine, IsThatOfAnUnknownKey)
{
    EXPECT_EQ(errorOf("{\n\"replay\": {\n\"file\": \"a\",\n\"lop\"\n:\ntrue}}"),
              "s.json:4: replay.lop: unknown key; accepted: file, speed, loop; did you mean loop?");
}

TEST(ScenarioLine, IsOneLineWhateverTheFileHolds)
{
    const std::string error = errorOf("{\"fault\x7f\xc2\x9b\xc3\xa4\\n\": 1}");
    EXPECT_EQ(error.substr(0, error.find(" key")), "s.json:1: \"fault\\x7f\\xc2\\x9b\xc3\xa4\\n\": unknown");
}

TEST(ScenarioLine, IsThatOfTheObjectThatLacksAKey)
{
    EXPECT_EQ(errorOf("{\"events\":\n[\n{\n\"id\": 1\n}\n]}"),
              "s.json:3: events[0].atMs: missing; accepted: a time in milliseconds");
}

TEST(ScenarioLine, IsThatOfTheSecondOfTwoEqualKeys)
{
    EXPECT_EQ(errorOf("{\"seed\": 1,\n\"seed\":\n2}"), "s.json:2: the key \"seed\" is given twice in one object");
    EXPECT_EQ(errorOf("{\"a\": {\"b\": 1},\n\"c\": {\"b\": 1, \n\"\\u0062\": 1}}"),
              "s.json:3: the key \"b\" is given twice in one object");
}

TEST(ScenarioLine, IsThatOfWhatIsNoJson)
{
    EXPECT_EQ(errorOf("{\n  \"seed\" 1\n}"), "s.json:2: column 11: syntax error while parsing object separator - "
                                             "unexpected number literal; expected ':'");
    EXPECT_EQ(errorOf("{\"seed\": 1}\nx"), "s.json:2: column 1: syntax error while parsing value - invalid literal; "
                                           "last read: '1}<U+000A>x'; expected end of input");
    EXPECT_EQ(errorOf("{\"seed\":\n 1e999}"), "s.json:2: column 7: number overflow parsing '1e999'");
    EXPECT_EQ(errorOf("{\"seed\":\n"), "s.json:1: column 9: syntax error while parsing value - unexpected end of "
                                       "input; expected '[', '{', or a literal");
    EXPECT_EQ(errorOf("{} // comment"), "s.json:1: column 4: syntax error while parsing value - invalid literal; last "
                                        "read: '{} /'; expected end of input");
    EXPECT_EQ(errorOf(std::string("{}\n\0{}", 6)),
              "s.json:2: column 1: byte 00 is not accepted; accepted: text without zeros");
}

TEST(ScenarioLine, KeepsALongComplaintShort)
{
    const std::string error = errorOf("{\"" + std::string(100000, 'a') + "\n");
    EXPECT_EQ(error.substr(0, 70), "s.json:1: column 100003: syntax error while parsing object key - inval");
    EXPECT_LT(error.size(), 300U);
}

TEST(ScenarioText, IsAcceptedWithAByteOrderMark)
{
    EXPECT_EQ(errorOf("\xEF\xBB\xBF{}"), "accepted");
}

TEST(ScenarioText, IsUtf8)
{
    EXPECT_EQ(errorOf("{\"$schema\": \"\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x9B\xB0 \xED\x9F\xBF \xF4\x8F\xBF\xBF\"}"),
              "accepted");
    const std::string begin = "{\n\"$schema\": \"";
    for (const char* const bytes : {"\xFF", "\xC3", "\xC0\x80", "\x80", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80",
                                    "\xF0\x80\x80\x80", "\xE0\x9F\xBF", "\xF5\x80\x80\x80"}) {
        const std::string error = errorOf(begin + bytes + "\"}");
        EXPECT_EQ(error.substr(0, 26), "s.json:2: column 13: byte ");
        EXPECT_EQ(error.substr(28), " is not accepted; accepted: text in UTF-8");
    }
    EXPECT_EQ(errorOf(begin + "\xFF"), "s.json:2: column 13: byte FF is not accepted; accepted: text in UTF-8");
    EXPECT_EQ(errorOf("\xC3"), "s.json:1: column 1: byte C3 is not accepted; accepted: text in UTF-8");
}

TEST(ScenarioText, IsNestedAtMost32Deep)
{
    EXPECT_NO_THROW(arcsim::parseJson("s.json", nested(32, "1")));
    EXPECT_EQ(errorOf("\n" + nested(33, "1")),
              "s.json:2: column 97: more nesting is not accepted; accepted: objects and arrays at most 32 deep");
    EXPECT_EQ(errorOf(std::string(1000000, '[')),
              "s.json:1: column 33: more nesting is not accepted; accepted: objects and arrays at most 32 deep");
}

TEST(ScenarioText, IsAtMost16MebibytesLong)
{
    EXPECT_EQ(errorOf("{}" + std::string((16U << 20U) - 2, ' ')), "accepted");
    EXPECT_EQ(errorOf("{}" + std::string((16U << 20U) - 1, ' ')),
              "s.json: a text of 16777217 bytes is not accepted; accepted: at most 16777216 bytes");
}

TEST(ScenarioError, ShowsTheBeginningOfALargeValue)
{
    EXPECT_EQ(errorOf("{\"seed\": [" + std::string(100000, '1') + "]}").substr(0, 50),
              "s.json:1: column 100011: number overflow parsing '");
    EXPECT_EQ(errorOf("{\"seed\": [\"" + std::string(100000, 'x') + "\", 2, {\"b\": [], \"a\": null}]}"),
              "s.json:1: seed: [\"" + std::string(58, 'x') +
                  "... is not accepted; accepted: a whole number from 0 to 4294967295");
    EXPECT_EQ(
        errorOf("{\"seed\": [1, {\"b\": [], \"a\": null, \"c\": \"x\\ny\"}, 2.5]}"),
        "s.json:1: seed: [1,{\"a\":null,\"b\":[],\"c\":\"x\\ny\"},2.5] is not accepted; accepted: a whole number from "
        "0 to 4294967295");
}

TEST(ScenarioError, CutsNoCharacterInHalf)
{
    std::string euros;
    for (int i = 0; i < 40; ++i)
        euros += "\xE2\x82\xAC";
    EXPECT_EQ(errorOf("{\"seed\": \"" + euros + "\"}"),
              "s.json:1: seed: \"" + euros.substr(0, 57) +
                  "... is not accepted; accepted: a whole number from 0 to 4294967295");
}

TEST(ScenarioError, ShowsAnOddKeyAsJsonDoes)
{
    const std::string accepted = ": unknown key; accepted: coldMs, hotMs";
    EXPECT_EQ(errorOf("{\"firstFix\": {\"a b\\n\": 1}}"), "s.json:1: firstFix.\"a b\\n\"" + accepted);
    EXPECT_EQ(errorOf("{\"firstFix\": {\"\": 1}}"), "s.json:1: firstFix.\"\"" + accepted);
    EXPECT_EQ(errorOf("{\"firstFix\": {\"" + std::string(1000, 'k') + "\": 1}}"),
              "s.json:1: firstFix.\"" + std::string(39, 'k') + "..." + accepted);
}

TEST(ScenarioError, SuggestsTheWordThatIsNear)
{
    const auto ending = [](const std::string& text) {
        const std::string error = errorOf(text);
        const std::size_t at = error.find("; did you mean ");
        return at == std::string::npos ? "" : error.substr(at);
    };
    EXPECT_EQ(ending(R"({"latencys": false})"), "; did you mean latencies?");
    EXPECT_EQ(ending(R"({"LATENCIES": false})"), "; did you mean latencies?");
    EXPECT_EQ(ending(R"({"nofix": []})"), "; did you mean noFix?");
    EXPECT_EQ(ending(R"({"sede": 1})"), "; did you mean seed?");
    EXPECT_EQ(ending(R"({"route ": []})"), "; did you mean route?");
    EXPECT_EQ(ending(R"({"weather": 1})"), "");
    EXPECT_EQ(ending(R"({"": 1})"), "");
    EXPECT_EQ(ending("{\"" + std::string(100000, 's') + "\": 1}"), "");
    EXPECT_EQ(ending(R"({"settings": {"Power/Cpus": "max"}})"), "; did you mean Power/Cpu?");
    EXPECT_EQ(ending(R"({"faults": [{"function": "ARC_Opne"}]})"), "; did you mean ARC_Open?");
    EXPECT_EQ(ending(R"({"faults": [{"function": "Open"}]})"), "");
    EXPECT_EQ(ending(R"({"lsta": [{"atMs": 0, "system": "gsp"}]})"), "; did you mean gps?");
    EXPECT_EQ(ending(R"({"satellites": {"systems": ["galilleo"]}})"), "; did you mean galileo?");
}

TEST(JsonNode, OfAMessageNamesNoLine)
{
    const json message = {{"eventId", "x"}, {"extra", 1}};
    const auto errorOfMessage = [&](const std::string& name) -> std::string {
        try {
            JsonNode(name, message).at("eventId", "an event id").integer(0, 9);
        } catch (const ScenarioError& error) {
            return error.what();
        }
        return "accepted";
    };
    EXPECT_EQ(errorOfMessage("event"), "event: eventId: \"x\" is not accepted; accepted: a whole number from 0 to 9");
    EXPECT_EQ(errorOfMessage(""), "eventId: \"x\" is not accepted; accepted: a whole number from 0 to 9");
    try {
        JsonNode("event", message).requireKeys({"eventId"});
        FAIL();
    } catch (const ScenarioError& error) {
        EXPECT_STREQ(error.what(), "event: extra: unknown key; accepted: eventId");
    }
    try {
        JsonNode("event", message).at("count", "a count");
        FAIL();
    } catch (const ScenarioError& error) {
        EXPECT_STREQ(error.what(), "event: count: missing; accepted: a count");
    }
}

TEST(JsonNode, RefusesADeeplyNestedMessageWithoutGoingDown)
{
    json message = 1;
    for (int i = 0; i < 10000; ++i)
        message = json::array({std::move(message)});
    try {
        JsonNode("set", message).flag();
        FAIL();
    } catch (const ScenarioError& error) {
        EXPECT_EQ(error.what(), "set: " + std::string(60, '[') + "... is not accepted; accepted: true or false");
    }
}

TEST(JsonNode, ReadsTheFaultsOfMessages)
{
    const json message = {{"function", "ARC_StopGNSS"}, {"code", 2}};
    const auto fault = arcsim::readFault(JsonNode("fault", message), true);
    EXPECT_EQ(fault.request, 10U);
    EXPECT_EQ(fault.code, 2);
    EXPECT_FALSE(fault.firstCall || fault.from || fault.until || fault.times);
    EXPECT_THROW(arcsim::readFault(JsonNode("fault", message), false), ScenarioError);
    const json nothing = {{"function", "ARC_StopGNSS"}, {"call", 2}};
    EXPECT_THROW(arcsim::readFault(JsonNode("fault", nothing), true), ScenarioError);
}

TEST(JsonNode, WritesFaultsAsItReadsThem)
{
    for (const char* const text : {R"({"function":"ARC_Open","call":3,"count":2,"code":31})",
                                   R"({"function":"ARC_Close","fromMs":10,"untilMs":20,"times":4,"latencyMs":7})",
                                   R"({"function":"ARC_StopGNSS","latencyMs":{"min":1,"max":2},"hang":true})",
                                   R"({"function":"ARC_StopGNSS","latencyMs":{"mean":5,"deviation":0},"quotes":false})",
                                   R"({"function":"ARC_CurrentLSTA","indicator":-7,"replyLength":4096})"}) {
        const json document = json::parse(text);
        EXPECT_EQ(arcsim::faultJson(arcsim::readFault(JsonNode("", document), true)).dump(), text);
    }
}

TEST(JsonNode, ReadsTheStormsOfMessages)
{
    const json message = {{"eventId", 75}, {"count", 3}, {"everyMs", 20}, {"numbered", true}};
    const auto storm = arcsim::readStorm(JsonNode("event", message), 75, std::chrono::milliseconds(1000));
    ASSERT_EQ(storm.size(), 3U);
    EXPECT_EQ(storm[2].id, 75);
    EXPECT_EQ(storm[2].at, std::chrono::milliseconds(1040));
    EXPECT_EQ(storm[2].payload, (std::vector<unsigned char>{2, 0, 0, 0}));
}

TEST(JsonNode, ReadsTheSystemsOfMessages)
{
    using InOrder = std::array<bool, 6>;  // gps glonass galileo beidou qzss sbas
    const json all = "ALL";
    EXPECT_EQ(arcsim::readSystems(JsonNode("jam", all)), (InOrder{true, true, true, true, true, true}));
    const json some = {"GPS", "BeiDou", "sbas", "gps"};
    EXPECT_EQ(arcsim::readSystems(JsonNode("jam", some)), (InOrder{true, false, false, true, false, true}));
    const json lsta = "Galileo";
    EXPECT_EQ(arcsim::readLstaSystem(JsonNode("lsta", lsta)), arcsim::modem::LstaSystem::galileo);
}

}  // namespace
