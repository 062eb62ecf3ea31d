#include "arcsim/Recording.h"

#include "record/recorded_program.h"
#include "scenario/JsonNode.h"
#include "support/HeldBytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

using arcsim::parseRecording;
using arcsim::Recording;
using arcsim::ScenarioError;
using std::chrono::microseconds;

const std::string kHeader = R"({"recording":1,"utc":"2026-11-21T09:31:00.123Z","pid":42,"program":"navigator",)"
                            R"("library":"/usr/lib/libArcRilD.so"})"
                            "\n";
const std::string kOpenBegins = R"({"n":1,"us":12,"thread":1,"call":"ARC_Open","args":{}})"
                                "\n";
const std::string kOpenEnds = R"({"n":1,"us":300120,"thread":1,"code":0,"out":{},"tookUs":300108})"
                              "\n";

std::string errorOf(const std::string& text)
{
    try {
        parseRecording("r.jsonl", text);
    } catch (const ScenarioError& error) {
        return error.what();
    }
    return "accepted";
}

/// Of a line after the header.
std::string errorOfLine(const std::string& line)
{
    return errorOf(kHeader + line + "\n");
}

TEST(ARecordingThatIsRead, GivesTheHeader)
{
    const Recording recording = parseRecording("r.jsonl", kHeader);
    EXPECT_EQ(recording.utc, "2026-11-21T09:31:00.123Z");
    EXPECT_EQ(recording.pid, 42);
    EXPECT_EQ(recording.program, "navigator");
    EXPECT_EQ(recording.library, "/usr/lib/libArcRilD.so");
    EXPECT_TRUE(recording.calls.empty());
    EXPECT_EQ(parseRecording("r", R"({"recording":1,"utc":"","pid":1,"program":"p","library":null})").library, "");
}

TEST(ARecordingThatIsRead, GivesCallsInOrderWithTheirEnds)
{
    const std::string check =
        R"({"n":2,"us":20,"thread":2,"call":"ARC_CheckModuleSetting","args":{"key":"Power/Cpu","value":null,)"
        R"("reply":"set","replySize":255,"writeIndicator":null}})"
        "\n"
        R"({"n":2,"us":35,"thread":2,"code":33,"out":{"reply":"\u00ff"},"tookUs":14})"
        "\n";
    const Recording recording = parseRecording("r.jsonl", kHeader + kOpenBegins + check + kOpenEnds);
    ASSERT_EQ(recording.calls.size(), 2U);
    const arcsim::RecordedCall& open = recording.calls[0];
    EXPECT_EQ(open.number, 1U);
    EXPECT_EQ(open.at, microseconds(12));
    EXPECT_EQ(open.thread, 1);
    EXPECT_EQ(open.function, "ARC_Open");
    EXPECT_EQ(open.arguments.dump(), "{}");
    ASSERT_TRUE(open.end);
    EXPECT_EQ(open.end->at, microseconds(300120));
    EXPECT_EQ(open.end->code, 0);
    EXPECT_EQ(open.end->outputs.dump(), "{}");
    EXPECT_EQ(open.end->took, microseconds(300108));
    const arcsim::RecordedCall& second = recording.calls[1];
    EXPECT_EQ(second.number, 2U);
    EXPECT_EQ(second.thread, 2);
    EXPECT_EQ(second.arguments.dump(),
              R"({"key":"Power/Cpu","value":null,"reply":"set","replySize":255,"writeIndicator":null})");
    EXPECT_EQ(second.end->code, 33);
    EXPECT_EQ(second.end->outputs.value().at("reply"), "\u00ff");
    EXPECT_EQ(recording.endOrder, (std::vector<unsigned>{2, 1}));
}

TEST(ARecordingThatIsRead, GivesEventsWithTheirPlaceAmongTheCalls)
{
    const Recording recording = parseRecording("r.jsonl", kHeader +
                                                              R"({"us":3,"thread":9,"event":-1,"length":7,"data":null}
{"us":12,"thread":1,"n":1,"call":"ARC_Open","args":{}}
{"us":15,"thread":9,"event":34,"length":2,"data":"0aFF"}
{"us":16,"thread":9,"event":35,"length":-2,"data":""}
{"us":18,"thread":9,"handled":true,"tookUs":2}
{"us":22,"thread":1,"n":1,"code":0,"out":{},"tookUs":10}
{"us":29,"thread":9,"event":36,"length":0,"data":""}
)");
    ASSERT_EQ(recording.events.size(), 4U);
    const auto& events = recording.events;
    EXPECT_EQ(events[0].id, -1);
    EXPECT_EQ(events[0].length, 7);
    EXPECT_FALSE(events[0].data);
    EXPECT_FALSE(events[0].took);
    EXPECT_EQ(events[0].callsBegun, 0U);
    EXPECT_EQ(events[0].afterCall, microseconds(3));
    EXPECT_EQ(events[1].id, 34);
    EXPECT_EQ(events[1].thread, 9);
    EXPECT_EQ(events[1].at, microseconds(15));
    EXPECT_EQ(events[1].data, (std::vector<unsigned char>{10, 255}));
    EXPECT_EQ(events[1].callsBegun, 1U);
    EXPECT_EQ(events[1].callsEnded, 0U);
    EXPECT_EQ(events[1].afterCall, microseconds(3));
    EXPECT_FALSE(events[1].took) << "the inner one was handled first";
    EXPECT_EQ(events[2].took, microseconds(2));
    EXPECT_EQ(events[3].callsEnded, 1U);
    EXPECT_EQ(events[3].afterCall, microseconds(7));
}

TEST(ARecordingThatIsRead, MayEndAnywhere)
{
    const std::string text = kHeader + kOpenBegins + kOpenEnds;
    for (std::size_t length = kHeader.size(); length <= text.size(); ++length) {
        const Recording recording = parseRecording("r.jsonl", text.substr(0, length));
        const std::size_t begun = length + 1 < kHeader.size() + kOpenBegins.size() ? 0 : 1;
        ASSERT_EQ(recording.calls.size(), begun) << length;
        if (begun == 1) {
            EXPECT_EQ(recording.calls[0].end.has_value(), length + 1 >= text.size()) << length;
        }
    }
}

TEST(ARecordingThatIsRead, HasToBeginWithItsHeader)
{
    EXPECT_EQ(errorOf(""), "r.jsonl: is empty; accepted: a recording, as libArcRecord.so writes it");
    EXPECT_EQ(errorOf("{\"recor"), "r.jsonl:1: {\"recor is not accepted; accepted: a JSON object");
    EXPECT_EQ(errorOf(kOpenBegins),
              "r.jsonl:1: {\"args\":{},\"call\":\"ARC_Open\",\"n\":1,\"thread\":1,\"us\":12} is not accepted; "
              "accepted: the first line of a recording, {\"recording\":1,...}");
    EXPECT_EQ(errorOf("{\"recording\":1}\n"), "r.jsonl:1: utc: missing; accepted: a time");
    EXPECT_EQ(errorOf(R"({"recording":2,"utc":"","pid":1,"program":"p","library":null})"),
              "r.jsonl:1: recording: 2 is not accepted; accepted: a whole number from 1 to 1");
    EXPECT_EQ(errorOf(R"({"recording":1,"utc":"","pid":1,"program":"p","library":7})"),
              "r.jsonl:1: library: 7 is not accepted; accepted: a path or null");
    EXPECT_EQ(errorOf(R"({"recording":1,"more":1})"),
              "r.jsonl:1: more: unknown key; accepted: recording, utc, pid, program, library");
}

TEST(ARecordingThatIsRead, HasNoOtherLines)
{
    EXPECT_EQ(errorOf(kHeader + "{\"n\":1,\n" + kOpenEnds),
              "r.jsonl:2: {\"n\":1, is not accepted; accepted: a JSON object");
    EXPECT_EQ(errorOf(kHeader + "\n" + kOpenBegins), "r.jsonl:2:  is not accepted; accepted: a JSON object");
    EXPECT_EQ(errorOf(kHeader + std::string(70, 'x') + "\n" + kOpenBegins),
              "r.jsonl:2: " + std::string(60, 'x') + "... is not accepted; accepted: a JSON object");
    for (const char* const line : {"7", "[]", "{}"}) {
        EXPECT_EQ(errorOfLine(line), "r.jsonl:2: " + std::string(line) +
                                         " is not accepted; accepted: an object with the key call, code, event or "
                                         "handled");
    }
    EXPECT_EQ(errorOfLine(R"({"call":"ARC_Open","call":"ARC_Open"})"),
              "r.jsonl:2: the key \"call\" is given twice in one object");
}

TEST(ARecordingThatIsRead, RefusesWhatIsWrongWithABeginning)
{
    EXPECT_EQ(errorOfLine(R"({"n":2,"us":12,"thread":1,"call":"ARC_Open","args":{}})"),
              "r.jsonl:2: n: 2 is not accepted; accepted: 1, since calls are numbered in the order in which they "
              "begin");
    EXPECT_EQ(errorOfLine(R"({"n":1,"us":-1,"thread":1,"call":"ARC_Open","args":{}})"),
              "r.jsonl:2: us: -1 is not accepted; accepted: a whole number from 0 to 9007199254740992");
    EXPECT_EQ(errorOfLine(R"({"n":1,"us":1,"thread":0,"call":"ARC_Open","args":{}})"),
              "r.jsonl:2: thread: 0 is not accepted; accepted: a whole number from 1 to 2147483647");
    EXPECT_EQ(errorOfLine(R"({"n":1,"us":1,"thread":1,"call":"ARC_Opn","args":{}})"),
              "r.jsonl:2: call: \"ARC_Opn\" is not accepted; accepted: ARC_SetNotificationMethod, ARC_Open, "
              "ARC_Close, ARC_RegisterNotification, ARC_GetArcVersion, ARC_GetRilVersion, ARC_EnableLogging, "
              "ARC_AtcTunneling, ARC_CheckModuleSetting, ARC_StartGNSSraw, ARC_StopGNSS, ARC_ForceStopGNSS, "
              "ARC_ResetAGNSS, ARC_CurrentLSTA, ARC_EnableLSTA");
    const auto errorOfArguments = [](const std::string& function, const std::string& arguments) {
        return errorOfLine(R"({"n":1,"us":1,"thread":1,"call":")" + function + R"(","args":)" + arguments + "}");
    };
    EXPECT_EQ(errorOfArguments("ARC_Open", R"({"a":1})"), "r.jsonl:2: args.a: unknown key; accepted: none");
    EXPECT_EQ(errorOfArguments("ARC_EnableLogging", R"({"zone":1})"),
              "r.jsonl:2: args.text: missing; accepted: an argument of ARC_EnableLogging");
    EXPECT_EQ(errorOfArguments("ARC_EnableLogging", R"({"zone":"1","text":""})"),
              "r.jsonl:2: args.zone: \"1\" is not accepted; accepted: a whole number from -2147483648 to "
              "2147483647");
    EXPECT_EQ(errorOfArguments("ARC_EnableLogging", R"({"zone":1,"text":2})"),
              "r.jsonl:2: args.text: 2 is not accepted; accepted: a text or null");
    EXPECT_EQ(errorOfArguments("ARC_StartGNSSraw", R"({"text":"x","size":2})"),
              "r.jsonl:2: args.text: \"x\" is not accepted; accepted: \"set\" or null");
    EXPECT_EQ(errorOfArguments("ARC_EnableLSTA", R"({"arcTechnologyId":10,"enable":1,"parameter":2})"),
              "r.jsonl:2: args.enable: 1 is not accepted; accepted: true or false");
    EXPECT_EQ(errorOfArguments("ARC_Open", "7"),
              "r.jsonl:2: args: 7 is not accepted; accepted: an object with the keys ");
}

TEST(ARecordingThatIsRead, RefusesWhatIsWrongWithAnEnd)
{
    const auto errorOfEnd = [](const std::string& line) { return errorOf(kHeader + kOpenBegins + line + "\n"); };
    EXPECT_EQ(errorOfEnd(R"({"n":2,"us":1,"thread":1,"code":0,"out":{},"tookUs":1})"),
              "r.jsonl:3: n: 2 is not accepted; accepted: the number of a call that has begun and not ended");
    EXPECT_EQ(errorOf(kHeader + kOpenBegins + kOpenEnds + kOpenEnds),
              "r.jsonl:4: n: 1 is not accepted; accepted: the number of a call that has begun and not ended");
    EXPECT_EQ(errorOfEnd(R"({"n":1,"us":1,"thread":2,"code":0,"out":{},"tookUs":1})"),
              "r.jsonl:3: thread: 2 is not accepted; accepted: 1, the thread on which the call began");
    EXPECT_EQ(errorOfEnd(R"({"n":1,"us":1,"thread":1,"code":0,"out":{"reply":""},"tookUs":1})"),
              "r.jsonl:3: out.reply: unknown key; accepted: none");
    EXPECT_EQ(errorOfEnd(R"({"n":1,"us":1,"thread":1,"code":0,"out":{}})"),
              "r.jsonl:3: tookUs: missing; accepted: a time in microseconds");
    const auto errorOfRecord = [](const std::string& record) {
        return errorOf(kHeader +
                       R"({"n":1,"us":1,"thread":1,"call":"ARC_CurrentLSTA","args":{"arcTechnologyId":1,"out":"set"}})"
                       "\n" +
                       R"({"n":1,"us":1,"thread":1,"code":0,"out":{"record":)" + record + R"(},"tookUs":1})" + "\n");
    };
    EXPECT_EQ(errorOfRecord(R"({"indicator":1,"status":1,"value":null})"), "accepted");
    EXPECT_EQ(errorOfRecord(R"({"indicator":1,"status":1,"value":1.5,"bytes":")" + std::string(128, '0') + "\"}"),
              "accepted");
    EXPECT_EQ(errorOfRecord(R"({"indicator":1,"status":1})"),
              "r.jsonl:3: out.record.value: missing; accepted: a number or null");
    EXPECT_EQ(errorOfRecord(R"({"indicator":1,"status":1,"value":1,"bytes":"00"})"),
              "r.jsonl:3: out.record.bytes: \"00\" is not accepted; accepted: 64 bytes as pairs of hexadecimal "
              "digits");
}

TEST(ARecordingThatIsRead, RefusesWhatIsWrongWithAnEvent)
{
    EXPECT_EQ(errorOfLine(R"({"us":3,"thread":9,"event":1,"length":2,"data":"0a"})"),
              "r.jsonl:2: data: \"0a\" is not accepted; accepted: 2 bytes, as the length says");
    EXPECT_EQ(errorOfLine(R"({"us":3,"thread":9,"event":1,"length":1,"data":"0"})"),
              "r.jsonl:2: data: \"0\" is not accepted; accepted: pairs of hexadecimal digits");
    EXPECT_EQ(errorOfLine(R"({"us":3,"thread":9,"event":1,"length":1})"),
              "r.jsonl:2: data: missing; accepted: hexadecimal digits or null");
    EXPECT_EQ(errorOfLine(R"({"us":3,"thread":9,"handled":true,"tookUs":1})"),
              "r.jsonl:2: thread: 9 is not accepted; accepted: a thread on which an event is being handled");
    EXPECT_EQ(errorOfLine(R"({"us":3,"thread":9,"handled":false,"tookUs":1})"),
              "r.jsonl:2: handled: false is not accepted; accepted: true");
}

TEST(ARecordingThatIsRead, ComesFromAFile)
{
    const std::string file =
        (std::filesystem::path(testing::TempDir()) / ("recording." + std::to_string(getpid()))).string();
    std::ofstream(file) << kHeader << kOpenBegins;
    EXPECT_EQ(arcsim::readRecording(file).calls.size(), 1U);
    std::filesystem::remove(file);
    try {
        arcsim::readRecording("/nowhere/r.jsonl");
        ADD_FAILURE() << "accepted";
    } catch (const ScenarioError& error) {
        EXPECT_STREQ(error.what(), "/nowhere/r.jsonl: cannot be read: No such file or directory; accepted: the name of "
                                   "a recording, as libArcRecord.so writes it");
    }
}

TEST(ARecordingThatIsRead, IsARegularFile)
{
    const std::string accepted = "; accepted: the name of a recording, as libArcRecord.so writes it";
    const std::string pipe = testing::TempDir() + "/recording.pipe." + std::to_string(getpid());
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const auto& [name, reason] :
         {std::pair(std::string("/dev/zero"), "Is no regular file"), std::pair(pipe, "Is no regular file"),
          std::pair(std::string("/"), "Is a directory")}) {
        try {
            arcsim::readRecording(name);
            ADD_FAILURE() << name << " accepted";
        } catch (const ScenarioError& error) {
            EXPECT_EQ(error.what(), name + ": cannot be read: " + reason + accepted);
        }
    }
    ::unlink(pipe.c_str());
}

TEST(ARecordingThatIsRead, HasLinesOfALimitedLengthAndDepth)
{
    const std::size_t most = 16U << 20U;
    EXPECT_EQ(errorOf(kHeader + std::string(most + 1, ' ')),
              "r.jsonl: a longer line is not accepted; accepted: at most 16777216 bytes");
    for (const std::string& nested : {std::string(100000, '['), std::string(1000, '[') + std::string(1000, ']')})
        EXPECT_EQ(errorOfLine(nested), "r.jsonl:2: column 33: more nesting is not accepted; accepted: objects and "
                                       "arrays at most 32 deep");
}

TEST(ARecordingThatIsRead, SharesWhatManyCallsSay)
{
    std::string text = kHeader;
    for (int n = 1; n <= 3; ++n)
        text += R"({"n":)" + std::to_string(n) + R"(,"us":1,"thread":1,"call":"ARC_EnableLogging","args":)" +
                (n == 1 ? R"({"zone":7,"text":"t"})" : R"({"text":"t","zone":7.0})") + "}\n";
    const Recording recording = parseRecording("r.jsonl", text);
    EXPECT_EQ(recording.calls[2].arguments.dump(), R"({"zone":7,"text":"t"})") << "in one order and spelling";
    EXPECT_EQ(&recording.calls[0].arguments.dump(), &recording.calls[2].arguments.dump()) << "kept once";
}

/// 20,000 calls, 5 MB: what they are kept in grows with their number, not with what is written about each.
TEST(ARecordingThatIsRead, TakesLessMemoryThanItsFile)
{
    const std::string file = testing::TempDir() + "/recording.large." + std::to_string(getpid());
    std::ofstream stream(file);
    stream << kHeader;
    for (int n = 1; n <= 20000; ++n) {
        const std::string number = std::to_string(n);
        stream << R"({"n":)" << number << R"(,"us":)" << number
               << R"(,"thread":1,"call":"ARC_CheckModuleSetting","args":)"
               << R"({"key":"Power/Cpu","value":null,"reply":"set","replySize":255,"writeIndicator":null}})" << '\n'
               << R"({"n":)" << number << R"(,"us":)" << number << R"(,"thread":1,"code":0,"out":{"reply":"\"std\""},)"
               << R"("tookUs":5})" << '\n';
    }
    stream.close();
    const auto size = std::filesystem::file_size(file);
    const std::size_t before = heldBytes();
    const Recording recording = arcsim::readRecording(file);
    const std::size_t taken = heldBytes() - before;
    std::filesystem::remove(file);
    EXPECT_EQ(recording.calls.size(), 20000U);
    EXPECT_GT(size, 4000000U);
    EXPECT_GT(taken, 20000 * sizeof(void*));  // something was counted
    EXPECT_LT(taken, size * 9 / 10);
}

TEST(ARecordingThatIsRead, IsWhatTheRecorderWrites)
{
    for (const auto& [action, calls, events] :
         {std::tuple("every-function", 17U, 0U), std::tuple("null-pointers", 8U, 0U), std::tuple("codes", 30U, 0U),
          std::tuple("byte-texts", 2U, 0U), std::tuple("unterminated", 6U, 0U), std::tuple("long-texts", 2U, 1U),
          std::tuple("values", 9U, 0U), std::tuple("events", 6U, 7U), std::tuple("threads", 12001U, 600U)}) {
        record_test::RecordedProgram program;
        program.run(SCRIPTED_SUBJECT, action);
        const Recording recording = parseRecording(action, program.content());
        EXPECT_EQ(recording.program, "record_scripted") << action;
        EXPECT_EQ(recording.calls.size(), calls) << action;
        EXPECT_EQ(recording.endOrder.size(), calls) << action;
        EXPECT_EQ(recording.events.size(), events) << action;
    }
}

}  // namespace
