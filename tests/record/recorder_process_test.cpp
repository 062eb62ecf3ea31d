#include "record/recorded_program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using nlohmann::json;
using record_test::RecordedProgram;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

using Lines = std::vector<std::string>;

const char* const kOpenLines[] = {
    R"({"n":1,"us":0,"thread":1,"call":"ARC_Open","args":{}})",
    R"({"n":1,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})",
};

TEST(ARecording, IsNotWrittenByWayOfALinkThatWasPlantedUnderItsName)
{
    RecordedProgram program;
    const std::string script = program.folder() + "/planted";
    const std::string victim = program.folder() + "/victim";
    std::ofstream(victim) << "precious";
    std::ofstream(script) << "#!/bin/sh\nln -s victim arcrecord.$$.jsonl\nexec " SCRIPTED_SUBJECT " call\n";
    ::chmod(script.c_str(), 0700);
    program.setEnvironment("ARCRECORD_FILE", "");
    program.run(script);
    EXPECT_EQ(program.content("victim"), "precious");
    EXPECT_THAT(program.errors(), HasSubstr(".jsonl: cannot be written: Too many levels of symbolic links; calls are "
                                            "passed on without being recorded\n"));
}

TEST(ARecording, HasNothingOfWhatIsSaidToAClosedDescriptor)
{
    RecordedProgram program;
    const std::string script = program.folder() + "/closing";
    std::ofstream(script) << "#!/bin/sh\nexec " PLAIN_BEHIND_RECORDER " >&- 2>&-\n";
    ::chmod(script.c_str(), 0700);
    program.setEnvironment("ARCRECORD_LIBRARY", SIMULATED_MODEM);
    program.run(script);
    EXPECT_THAT(program.content(), StartsWith("{"));
    EXPECT_EQ(program.content().find("(simulated)' 0 0"), std::string::npos);
    EXPECT_EQ(json::parse(program.lines().at(0)).at("call"), "ARC_SetNotificationMethod");
}

TEST(ARecording, IntoAPipeThatNobodyReadsDoesNotHoldUpTheProgram)
{
    RecordedProgram program;
    ASSERT_EQ(::mkfifo((program.folder() + "/pipe").c_str(), 0600), 0);
    program.setEnvironment("ARCRECORD_FILE", "pipe");
    program.run(SCRIPTED_SUBJECT, "call");
    EXPECT_THAT(program.errors(), HasSubstr("arcrecord: pipe: cannot be written: No such device or address"));
}

TEST(ARecording, BeginsWithWhatWasRecorded)
{
    RecordedProgram program;
    const auto before = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    program.start(SCRIPTED_SUBJECT, "call");
    const pid_t pid = program.pid();
    program.expectEnd();
    std::array<int, 6> utc{};
    ASSERT_EQ(std::sscanf(json::parse(program.header()).at("utc").get<std::string>().c_str(), "%d-%d-%dT%d:%d:%d",
                          &utc[0], &utc[1], &utc[2], &utc[3], &utc[4], &utc[5]),
              6);
    tm fields = {};
    fields.tm_year = utc[0] - 1900;
    fields.tm_mon = utc[1] - 1;
    fields.tm_mday = utc[2];
    fields.tm_hour = utc[3];
    fields.tm_min = utc[4];
    fields.tm_sec = utc[5];
    EXPECT_GE(timegm(&fields), before);
    EXPECT_LE(timegm(&fields), std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
    EXPECT_THAT(program.header(),
                MatchesRegex("\\{\"recording\":1,\"utc\":\"20[0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:"
                             "[0-9][0-9]\\.[0-9][0-9][0-9]Z\",\"pid\":" +
                             std::to_string(pid) +
                             ",\"program\":\"record_scripted\",\"library\":\".*/librecord_standin.so\"\\}"));
}

TEST(ARecording, IsTheOwnersAloneAndReplacesAnEarlierOne)
{
    RecordedProgram program;
    const std::string file = program.folder() + "/r.jsonl";
    program.run(SCRIPTED_SUBJECT, "threads");
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    program.run(SCRIPTED_SUBJECT, "call");
    EXPECT_EQ(program.lines().size(), 4U);
}

TEST(ARecording, IsNamedAfterTheProcessWithoutAnotherName)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_FILE", "");
    program.start(SCRIPTED_SUBJECT, "call");
    const std::string name = "arcrecord." + std::to_string(program.pid()) + ".jsonl";
    program.expectEnd();
    EXPECT_EQ(program.lines(name).size(), 4U);
}

TEST(ARecording, HoldsTheCallsThatAreMadeWhileTheProcessExits)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "at-the-end");
    const Lines lines = program.timelessLines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[2], R"({"n":2,"us":0,"thread":1,"call":"ARC_Close","args":{}})");
}

TEST(ARecording, LosesAtMostTheLastLineWhenTheProcessIsKilled)
{
    RecordedProgram program;
    program.start(SCRIPTED_SUBJECT, "call-for-ever");
    program.waitForLines(1000);
    program.kill();
    const Lines lines = program.lines();
    ASSERT_GE(lines.size(), 999U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const json fields = json::parse(lines[i]);
        EXPECT_EQ(fields.at("n"), i / 2 + 1);
        EXPECT_EQ(fields.contains("call"), i % 2 == 0);
    }
}

TEST(ARecording, HasTheFirstLineOfACallThatHangs)
{
    RecordedProgram program;
    program.start(SCRIPTED_SUBJECT, "hang");
    program.waitForLines(3);
    program.kill();
    EXPECT_THAT(program.timelessLines(), ElementsAre(kOpenLines[0], kOpenLines[1],
                                                     R"({"n":2,"us":0,"thread":1,"call":"ARC_StopGNSS","args":{}})"));
}

TEST(ARecording, LeavesTheCallsOfAForkedChildToAFileOfTheChild)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "forked");
    long child = 0;
    long grandchild = 0;
    ASSERT_EQ(std::sscanf(program.output().c_str(), "%ld %ld", &child, &grandchild), 2);
    EXPECT_THAT(program.timelessLines(), ElementsAre(kOpenLines[0], kOpenLines[1],
                                                     R"({"n":2,"us":0,"thread":1,"call":"ARC_StopGNSS","args":{}})",
                                                     R"({"n":2,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})",
                                                     R"({"n":3,"us":0,"thread":1,"call":"ARC_Close","args":{}})",
                                                     R"({"n":3,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})"));
    const std::string childsFile = "r.jsonl." + std::to_string(child);
    EXPECT_THAT(program.header(childsFile), HasSubstr("\"pid\":" + std::to_string(child)));
    EXPECT_THAT(program.timelessLines(childsFile),
                ElementsAre(R"({"n":1,"us":0,"thread":1,"call":"ARC_ForceStopGNSS","args":{}})",
                            R"({"n":1,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})"));
    EXPECT_THAT(program.timelessLines("r.jsonl." + std::to_string(grandchild)),
                ElementsAre(R"({"n":1,"us":0,"thread":1,"call":"ARC_ResetAGNSS","args":{}})",
                            R"({"n":1,"us":0,"thread":1,"code":0,"out":{},"tookUs":0})"));
}

TEST(ARecording, OfAChildDoesNotWaitForThreadsThatStayedInTheParent)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "forked-between-calls");
    for (const std::string& line : program.lines())
        EXPECT_TRUE(json::accept(line)) << line;
    std::size_t files = 0;
    for (const auto& each : std::filesystem::directory_iterator(program.folder())) {
        const std::string name = each.path().filename().string();
        if (name.rfind("r.jsonl.", 0) != 0)
            continue;
        ++files;
        EXPECT_THAT(program.timelessLines(name), ElementsAre(kOpenLines[0], kOpenLines[1]));
    }
    EXPECT_EQ(files, 20U);
}

TEST(ARecording, IsNotTakenByAnotherProcessThatInheritedItsName)
{
    RecordedProgram program;
    program.run(SCRIPTED_SUBJECT, "started");
    long other = 0;
    ASSERT_EQ(std::sscanf(program.output().c_str(), "%ld", &other), 1);
    EXPECT_EQ(program.lines().size(), 4U);
    EXPECT_EQ(program.lines("r.jsonl." + std::to_string(other)).size(), 60U);
}

std::string errorsWithFile(const std::string& file)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_FILE", file);
    program.run(SCRIPTED_SUBJECT, "call");
    return program.errors();
}

TEST(ARecording, ThatCannotBeWrittenLetsTheCallsGoOn)
{
    const std::string rest = "; calls are passed on without being recorded\n";
    EXPECT_EQ(errorsWithFile("/nowhere/r.jsonl"),
              "arcrecord: /nowhere/r.jsonl: cannot be written: No such file or directory" + rest);
    EXPECT_EQ(errorsWithFile("/"), "arcrecord: /: cannot be written: Is a directory" + rest);
    EXPECT_EQ(errorsWithFile("/dev/full"), "arcrecord: /dev/full: cannot be written: No space left on device" + rest);
    EXPECT_EQ(errorsWithFile("/" + std::string(4000, 'x')),
              "arcrecord: /" + std::string(39, 'x') + "...: cannot be written: a name of more than 4000 bytes" + rest);
}

const char* const kAll31 = "31 31 31 'null' 31 31 31 31 31 31 31 31 31 31 31 31\n";

TEST(WithoutARealLibrary, EveryCallAnswersThatThereIsNoConnection)
{
    RecordedProgram program;
    program.run(PLAIN_BEHIND_RECORDER);
    EXPECT_EQ(program.output(), kAll31);
    EXPECT_EQ(program.errors(), "arcrecord: no libArcRilD.so to call is loaded; give its path in ARCRECORD_LIBRARY; "
                                "all calls answer 31\n");
    EXPECT_THAT(program.header(), HasSubstr("\"library\":null}"));
    const Lines lines = program.timelessLines();
    ASSERT_EQ(lines.size(), 32U);
    EXPECT_EQ(lines[1], R"({"n":1,"us":0,"thread":1,"code":31,"out":{},"tookUs":0})");
    EXPECT_EQ(lines[7], R"({"n":4,"us":0,"thread":1,"code":0,"out":{"version":null},"tookUs":0})");
}

TEST(WithoutARealLibrary, AMissingOneIsNamed)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_LIBRARY", "/nowhere/libArcRilD.so");
    program.run(PLAIN_BEHIND_RECORDER);
    EXPECT_EQ(program.output(), kAll31);
    EXPECT_EQ(program.errors(),
              "arcrecord: ARCRECORD_LIBRARY names '/nowhere/libArcRilD.so', which cannot be loaded: "
              "/nowhere/libArcRilD.so: cannot open shared object file: No such file or directory; accepted: the path "
              "of a libArcRilD.so; all calls answer 31\n");
}

TEST(WithoutARealLibrary, OneWithoutItsFunctionsIsNamed)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_LIBRARY", RECORDER);
    program.run(PLAIN_BEHIND_RECORDER);
    EXPECT_EQ(program.output(), kAll31);
    EXPECT_EQ(program.errors(), "arcrecord: ARCRECORD_LIBRARY names '" RECORDER
                                "', which has no functions to call; accepted: the path of a libArcRilD.so; all calls "
                                "answer 31\n");
}

TEST(WithoutARealLibrary, OnlyWhatALibraryLacksAnswersSo)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_LIBRARY", PARTIAL_STANDIN);
    program.run(PLAIN_BEHIND_RECORDER);
    EXPECT_EQ(program.output(), "31 7 31 'null' 8 31 31 31 31 31 31 31 9 31 31 31\n");
    EXPECT_EQ(program.errors(),
              "arcrecord: " PARTIAL_STANDIN
              " lacks ARC_SetNotificationMethod, ARC_Close, ARC_RegisterNotification, ARC_GetArcVersion, "
              "ARC_EnableLogging, ARC_AtcTunneling, ARC_CheckModuleSetting, ARC_StartGNSSraw, ARC_StopGNSS, "
              "ARC_ForceStopGNSS, ARC_CurrentLSTA, ARC_EnableLSTA; calls of what it lacks answer 31\n");
}

TEST(ARealLibrary, IsLookedForWithoutKeepingOthersThatLoadLibrariesFromCalling)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_LIBRARY", SIMULATED_MODEM);
    program.run(LOADING_SUBJECT, PLUGIN);
    std::vector<std::string> codes;
    for (const std::string& line : program.timelessLines()) {
        const json each = json::parse(line);
        if (each.contains("call") && each["call"] != "ARC_StopGNSS")  // of another thread, at any time
            codes.push_back(each["call"]);
    }
    EXPECT_THAT(codes, ElementsAre("ARC_Open", "ARC_Close"));
}

/// What the plain program prints with the simulated modem, and what is recorded of it.
void expectSimulatedModem(const RecordedProgram& program)
{
    EXPECT_EQ(program.output(), "0 0 0 'ArcRilD 1.0 (simulated)' 0 0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(program.errors(), "");
    EXPECT_THAT(program.header(), HasSubstr("/libArcRilD.so\"}"));
    Lines ends;
    for (const std::string& line : program.timelessLines())
        if (line.find("\"code\"") != std::string::npos)
            ends.push_back(line);
    ASSERT_EQ(ends.size(), 16U);
    EXPECT_EQ(ends[3],
              R"x({"n":4,"us":0,"thread":1,"code":0,"out":{"version":"ArcRilD 1.0 (simulated)"},"tookUs":0})x");
    EXPECT_EQ(ends[6], R"({"n":7,"us":0,"thread":1,"code":0,"out":{"answer":"+CSQ: 21,99\u000d\u000aOK"},"tookUs":0})");
    EXPECT_EQ(ends[7], R"({"n":8,"us":0,"thread":1,"code":0,"out":{"reply":"\"std\""},"tookUs":0})");
    EXPECT_EQ(ends[8], R"({"n":9,"us":0,"thread":1,"code":0,"out":{"writeIndicator":1},"tookUs":0})");
    EXPECT_THAT(ends[9], StartsWith(R"({"n":10,"us":0,"thread":1,"code":0,"out":{"text":"/dev/pts/)"));
}

TEST(TheSimulatedModem, IsRecordedByARecorderInItsPlace)
{
    RecordedProgram program;
    program.setEnvironment("ARCRECORD_LIBRARY", SIMULATED_MODEM);
    program.run(PLAIN_BEHIND_RECORDER);
    expectSimulatedModem(program);
}

TEST(TheSimulatedModem, IsRecordedByARecorderUnderItsFileName)
{
    RecordedProgram program;
    std::filesystem::create_directory(program.folder() + "/lib");
    std::filesystem::create_symlink(RECORDER, program.folder() + "/lib/libArcRilD.so");
    program.setEnvironment("LD_LIBRARY_PATH", "lib");
    program.setEnvironment("ARCRECORD_LIBRARY", SIMULATED_MODEM);
    program.run(PLAIN_WITHOUT_RECORDER_BY_NAME);
    expectSimulatedModem(program);
}

TEST(TheSimulatedModem, IsRecordedByARecorderThatIsPreloaded)
{
    RecordedProgram program;
    program.setEnvironment("LD_PRELOAD", record_test::sanitizerLibrary() + " " + RECORDER);
    program.run(PLAIN_WITHOUT_RECORDER);
    expectSimulatedModem(program);
}

TEST(TheSimulatedModem, IsNotRecordedWithoutTheRecorder)
{
    RecordedProgram program;
    program.run(PLAIN_WITHOUT_RECORDER);
    EXPECT_EQ(program.output(), "0 0 0 'ArcRilD 1.0 (simulated)' 0 0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(program.content(), "");
}

TEST(TheRecorderLibrary, ExportsTheFunctionsOfTheClientLibraryAndNothingElse)
{
    FILE* const pipe = popen("nm -D --defined-only '" RECORDER "'", "r");
    ASSERT_NE(pipe, nullptr);
    std::vector<std::string> names;
    char type = 0;
    char name[200] = {};
    while (std::fscanf(pipe, "%*s %c %199s", &type, name) == 2)
        names.push_back(std::string(1, type) + " " + name);
    EXPECT_EQ(pclose(pipe), 0);
    EXPECT_THAT(names, testing::UnorderedElementsAre(
                           "T ARC_SetNotificationMethod", "T ARC_Open", "T ARC_Close", "T ARC_RegisterNotification",
                           "T ARC_GetArcVersion", "T ARC_GetRilVersion", "T ARC_EnableLogging", "T ARC_AtcTunneling",
                           "T ARC_CheckModuleSetting", "T ARC_StartGNSSraw", "T ARC_StopGNSS", "T ARC_ForceStopGNSS",
                           "T ARC_ResetAGNSS", "T ARC_CurrentLSTA", "T ARC_EnableLSTA"));
}

}  // namespace
