#include "record/recorded_program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using record_test::RecordedProgram;
using testing::ElementsAre;

using Lines = std::vector<std::string>;

/// Both lines of a call made on the first thread.
Lines bothLines(int number, const std::string& call, const std::string& end)
{
    const std::string start = R"({"n":)" + std::to_string(number) + R"(,"us":0,"thread":1,)";
    return {start + call + "}", start + end + R"(,"tookUs":0})"};
}

Lines recorded(const std::string& action)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, action);
    EXPECT_EQ(program.errors(), "");
    return program.timelessLines();
}

TEST(TheRecorder, WritesTwoLinesForEveryFunction)
{
    const std::vector<std::pair<std::string, std::string>> calls{
        {R"("call":"ARC_SetNotificationMethod","args":{"method":1})", R"("code":0,"out":{})"},
        {R"("call":"ARC_Open","args":{})", R"("code":0,"out":{})"},
        {R"("call":"ARC_RegisterNotification","args":{"handler":"set"})", R"("code":0,"out":{})"},
        {R"("call":"ARC_GetArcVersion","args":{})", R"("code":0,"out":{"version":"version"})"},
        {R"("call":"ARC_GetRilVersion","args":{"primary":"set","secondary":"set","size":256})",
         R"("code":0,"out":{"primary":"1.2","secondary":"3.4"})"},
        {R"("call":"ARC_EnableLogging","args":{"zone":3,"text":"..."})", R"("code":0,"out":{})"},
        {R"("call":"ARC_AtcTunneling","args":{"command":"AT+CSQ","answer":"set"})",
         R"("code":0,"out":{"answer":"+CSQ: 21,99"})"},
        {R"("call":"ARC_CheckModuleSetting","args":{"key":"Power/Cpu","value":null,"reply":"set","replySize":255,)"
         R"("writeIndicator":null})",
         R"("code":0,"out":{"reply":"\"std\""})"},
        {R"("call":"ARC_CheckModuleSetting","args":{"key":"Power/Cpu","value":"\"max\"","reply":null,"replySize":0,)"
         R"("writeIndicator":"set"})",
         R"("code":0,"out":{"writeIndicator":1})"},
        {R"("call":"ARC_StartGNSSraw","args":{"text":"set","size":255})", R"("code":0,"out":{"text":"/dev/pts/3"})"},
        {R"("call":"ARC_StopGNSS","args":{})", R"("code":0,"out":{})"},
        {R"("call":"ARC_ForceStopGNSS","args":{})", R"("code":0,"out":{})"},
        {R"("call":"ARC_ResetAGNSS","args":{})", R"("code":0,"out":{})"},
        {R"("call":"ARC_CurrentLSTA","args":{"arcTechnologyId":10,"out":"set"})",
         R"("code":0,"out":{"record":{"indicator":1000,"status":1,"value":41.5,"bytes":")"
         "e8030000ffffffff01000000020000000000000000c04440"
         "03000000000000000000000000000000000000000000000000000000000000000000000000000000"
         R"("}})"},
        {R"("call":"ARC_EnableLSTA","args":{"arcTechnologyId":13,"enable":true,"parameter":-5})",
         R"("code":0,"out":{})"},
        {R"("call":"ARC_EnableLSTA","args":{"arcTechnologyId":13,"enable":false,"parameter":0})",
         R"("code":0,"out":{})"},
        {R"("call":"ARC_Close","args":{})", R"("code":0,"out":{})"},
    };
    const Lines lines = recorded("every-function");
    ASSERT_EQ(lines.size(), 2 * calls.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const Lines expected = bothLines(static_cast<int>(i) + 1, calls[i].first, calls[i].second);
        EXPECT_EQ(lines[2 * i], expected[0]);
        EXPECT_EQ(lines[2 * i + 1], expected[1]);
    }
}

TEST(TheRecorder, WritesNullPointersAsNull)
{
    const std::vector<std::pair<std::string, std::string>> calls{
        {R"("call":"ARC_RegisterNotification","args":{"handler":null})", R"("code":0,"out":{})"},
        {R"("call":"ARC_GetArcVersion","args":{})", R"("code":0,"out":{"version":null})"},
        {R"("call":"ARC_GetRilVersion","args":{"primary":null,"secondary":null,"size":256})", R"("code":0,"out":{})"},
        {R"("call":"ARC_EnableLogging","args":{"zone":0,"text":null})", R"("code":0,"out":{})"},
        {R"("call":"ARC_AtcTunneling","args":{"command":null,"answer":null})", R"("code":0,"out":{})"},
        {R"("call":"ARC_CheckModuleSetting","args":{"key":null,"value":null,"reply":null,"replySize":255,)"
         R"("writeIndicator":null})",
         R"("code":0,"out":{})"},
        {R"("call":"ARC_StartGNSSraw","args":{"text":null,"size":255})", R"("code":0,"out":{})"},
        {R"("call":"ARC_CurrentLSTA","args":{"arcTechnologyId":10,"out":null})", R"("code":0,"out":{})"},
    };
    const Lines lines = recorded("null-pointers");
    ASSERT_EQ(lines.size(), 2 * calls.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const Lines expected = bothLines(static_cast<int>(i) + 1, calls[i].first, calls[i].second);
        EXPECT_EQ(lines[2 * i], expected[0]);
        EXPECT_EQ(lines[2 * i + 1], expected[1]);
    }
}

/// What the ends of the calls in codes() of the program say.
TEST(TheRecorder, WritesOutputsOnlyWhenTheCodeSaysThatThereAreAny)
{
    const std::string record = R"({"record":{"indicator":1,"status":2,"value":3,"bytes":")"
                               "010000000000000002000000000000000000000000000840" +
                               std::string(80, '0') + R"("}})";
    const std::map<int, Lines> outputs{
        {0,
         {R"({"answer":"a"})", R"({"text":"t"})", R"({"primary":"p","secondary":"s"})",
          R"({"reply":"r","writeIndicator":2})", record}},
        {1, {"{}", "{}", "{}", "{}", "{}"}},
        {24, {R"({"answer":"a"})", "{}", "{}", "{}", "{}"}},
        {33, {"{}", R"({"text":"t"})", R"({"primary":"p","secondary":"s"})", R"({"reply":"r"})", "{}"}},
        {-5, {"{}", "{}", "{}", "{}", "{}"}},
        {1000, {"{}", "{}", "{}", "{}", "{}"}},
    };
    const Lines lines = recorded("codes");
    ASSERT_EQ(lines.size(), 60U);
    std::size_t line = 1;
    for (const int code : {0, 1, 24, 33, -5, 1000})
        for (const std::string& out : outputs.at(code)) {
            EXPECT_EQ(lines[line], R"({"n":)" + std::to_string((line + 1) / 2) + R"(,"us":0,"thread":1,"code":)" +
                                       std::to_string(code) + R"(,"out":)" + out + R"(,"tookUs":0})");
            line += 2;
        }
}

TEST(TheRecorder, PassesArgumentsResultsAndErrnoThrough)
{
    EXPECT_EQ(recorded("pass-through").size(), 18U) << "the program checks them itself";
}

TEST(TheRecorder, WritesEveryByteOfATextAsTheCharacterOfItsNumber)
{
    const Lines lines = recorded("byte-texts");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3], R"({"n":2,"us":0,"thread":1,"code":0,"out":{"text":"\u00ff\u0080\u007f\u001f\"\\/"},)"
                        R"("tookUs":0})");
    const std::string utf8 = json::parse(lines[0]).at("args").at("text");
    std::string expected;
    for (int byte = 1; byte < 128; ++byte)
        expected += static_cast<char>(byte);
    for (int byte = 128; byte < 256; ++byte) {
        expected += static_cast<char>(byte < 192 ? 0xc2 : 0xc3);
        expected += static_cast<char>(byte < 192 ? byte : byte - 64);
    }
    EXPECT_EQ(utf8, expected);
    for (const char each : lines[0])
        EXPECT_TRUE(each >= ' ' && each < 0x7f) << static_cast<int>(each);
}

TEST(TheRecorder, ReadsTextsWithoutTerminatorUpToTheSizeOnly)
{
    const Lines lines = recorded("unterminated");
    ASSERT_EQ(lines.size(), 12U);
    EXPECT_EQ(json::parse(lines[1]).at("out"), json({{"text", "xxxxx"}}));
    EXPECT_EQ(json::parse(lines[3]).at("out"), json({{"primary", "xxxxx"}, {"secondary", "xxxxx"}}));
    EXPECT_EQ(json::parse(lines[5]).at("out"), json({{"reply", "xxxxx"}}));
    EXPECT_EQ(json::parse(lines[7]).at("out"), json::object()) << "size 0";
    EXPECT_EQ(json::parse(lines[9]).at("out"), json::object()) << "size -1";
    EXPECT_EQ(json::parse(lines[11]).at("out"), json({{"answer", std::string(4096, 'y')}}));
}

TEST(TheRecorder, WritesTextsAndPayloadsOfAnyLengthInOneLine)
{
    const Lines lines = recorded("long-texts");
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(json::parse(lines[0]).at("args").at("text"), std::string(100000, 'l'));
    std::string hex;
    for (int i = 0; i < 50000; ++i)
        hex += "ab";
    EXPECT_EQ(json::parse(lines[4]).at("data"), hex);
    EXPECT_EQ(json::parse(lines[4]).at("length"), 50000);
}

TEST(TheRecorder, WritesNumbersSoThatTheyCanBeReadBack)
{
    const Lines lines = recorded("values");
    std::vector<std::string> values;
    for (std::size_t i = 1; i < lines.size(); i += 2) {
        const std::size_t begin = lines[i].find("\"value\":") + 8;
        values.push_back(lines[i].substr(begin, lines[i].find(',', begin) - begin));
    }
    EXPECT_THAT(values, ElementsAre("0", "-0.5", "0.1", "0.30000000000000004", "1e+300", "4.94065645841247e-324", "41",
                                    "null", "null"));
}

TEST(TheRecorder, WritesEventsBeforeAndAfterTheHandlerOnTheThreadOfTheEvent)
{
    EXPECT_THAT(recorded("events"),
                ElementsAre(R"({"n":1,"us":0,"thread":1,"call":"ARC_RegisterNotification","args":{"handler":"set"}})",
                            R"({"n":1,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})",
                            R"({"us":0,"thread":1,"event":34,"length":3,"data":"0001fe"})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"us":0,"thread":1,"event":0,"length":8,"data":null})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"us":0,"thread":1,"event":-2,"length":0,"data":""})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"us":0,"thread":1,"event":3,"length":-1,"data":""})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"n":2,"us":0,"thread":1,"call":"ARC_RegisterNotification","args":{"handler":"set"}})",
                            R"({"n":2,"us":0,"thread":1,"code":31,"out":{},"tookUs":0})",
                            R"({"us":0,"thread":1,"event":4,"length":3,"data":"0001fe"})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"us":0,"thread":2,"event":5,"length":3,"data":"0001fe"})",
                            R"({"n":3,"us":0,"thread":2,"call":"ARC_StopGNSS","args":{}})",
                            R"({"n":3,"us":0,"thread":2,"code":0,"out":{},"tookUs":0})",
                            R"({"us":0,"thread":2,"handled":true,"tookUs":0})",
                            R"({"n":4,"us":0,"thread":1,"call":"ARC_Open","args":{}})",
                            R"({"us":0,"thread":1,"event":6,"length":3,"data":"0001fe"})",
                            R"({"n":5,"us":0,"thread":1,"call":"ARC_StopGNSS","args":{}})",
                            R"({"n":5,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})",
                            R"({"us":0,"thread":1,"handled":true,"tookUs":0})",
                            R"({"n":4,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})",
                            R"({"n":6,"us":0,"thread":1,"call":"ARC_RegisterNotification","args":{"handler":"set"}})",
                            R"({"n":6,"us":0,"thread":1,"code":31,"out":{},"tookUs":0})"));
}

TEST(TheRecorder, HandsHandlersOnWhenItHasNoPlaceForThemAnyMore)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "many-handlers");
    EXPECT_EQ(program.errors(),
              "arcrecord: more than 16 handlers were registered; events of the further ones are not recorded\n");
    const Lines lines = program.timelessLines();
    ASSERT_EQ(lines.size(), 2 * 18 + 2 * 16U);
    EXPECT_EQ(lines.back(), R"({"us":0,"thread":1,"handled":true,"tookUs":0})");
    EXPECT_EQ(lines[lines.size() - 2], R"({"us":0,"thread":1,"event":16,"length":0,"data":null})");
}

TEST(TheRecorder, LosesNothingWhenManyThreadsCallAtOnce)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "threads");
    std::map<long long, long long> threadOfOpenCall;
    std::map<long long, long long> nextZoneOf;
    long long calls = 0;
    long long ended = 0;
    long long events = 0;
    long long handled = 0;
    long long us = 0;
    for (const std::string& line : program.lines()) {
        const json fields = json::parse(line);
        const long long thread = fields.at("thread");
        EXPECT_LE(us, fields.at("us"));
        us = fields.at("us");
        if (fields.contains("call")) {
            EXPECT_EQ(fields.at("n"), ++calls);
            threadOfOpenCall[calls] = thread;
            if (fields.at("call") == "ARC_EnableLogging") {
                const long long zone = fields.at("args").at("zone");
                if (zone % 10000 != 0) {
                    EXPECT_EQ(zone, nextZoneOf[thread]);
                }
                nextZoneOf[thread] = zone + 1;
            }
        } else if (fields.contains("code")) {
            ++ended;
            EXPECT_EQ(threadOfOpenCall.at(fields.at("n")), thread);
            threadOfOpenCall.erase(fields.at("n").get<long long>());
        } else if (fields.contains("event")) {
            ++events;
        } else if (fields.contains("handled")) {
            ++handled;
        }
    }
    EXPECT_EQ(calls, 12001);
    EXPECT_EQ(ended, 12001);
    EXPECT_EQ(events, 600);
    EXPECT_EQ(handled, 600);
    EXPECT_TRUE(threadOfOpenCall.empty());
    EXPECT_EQ(nextZoneOf.size(), 6U);
}

TEST(TheRecorder, NeedsNoMoreMemoryHoweverManyCallsThereAre)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "memory");
    EXPECT_EQ(program.lines().size(), 2 + 8 * 2501U);
}

}  // namespace
