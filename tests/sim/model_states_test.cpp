#include "modem/Modem.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

namespace {

using arcsim::modem::EngineState;
using arcsim::modem::LstaSystem;
using arcsim::modem::Modem;
using arcsim::modem::Reception;
using arcsim::modem::Reply;
using arcsim::modem::Scenario;
using std::chrono::milliseconds;

Reception nothing(LstaSystem)
{
    return {};
}

Scenario scenario()
{
    Scenario made;
    made.engineStart = milliseconds(600);
    made.coldFirstFix = milliseconds(20000);
    made.hotFirstFix = milliseconds(1500);
    return made;
}

// The states in which every request is tried, in the order of the table's columns.
constexpr std::array<const char*, 4> kStates{"closed", "engine off", "engine starting", "engine running"};
constexpr milliseconds kNow{5000};

Modem modemIn(std::size_t state)
{
    Modem modem(scenario(), nothing);
    modem.setRawOutput("/dev/output");
    if (state >= 1)
        modem.open();
    if (state == 2)
        modem.startGnss(kNow - milliseconds(599));
    if (state == 3)
        modem.startGnss(kNow - milliseconds(600));
    return modem;
}

constexpr auto off = EngineState::off;
constexpr auto starting = EngineState::starting;
constexpr auto running = EngineState::running;

struct Row
{
    const char* name;
    std::function<Reply(Modem&)> request;
    std::array<int, 4> codes;
    std::array<EngineState, 4> enginesAfter;
};

const Row kRows[] = {
    {"open", [](Modem& m) { return m.open(); }, {0, 0, 0, 0}, {off, off, starting, running}},
    {"close", [](Modem& m) { return m.close(kNow); }, {1, 0, 0, 0}, {off, off, off, off}},
    {"versions", [](Modem& m) { return m.versions(); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"logging", [](Modem& m) { return m.enableLogging(); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"AT", [](Modem& m) { return m.atCommand("AT"); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"read", [](Modem& m) { return m.readSetting("Power/Cpu"); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"write",
     [](Modem& m) { return m.writeSetting("Power/Cpu", R"("max")", kNow); },
     {1, 0, 15, 0},
     {off, off, starting, running}},
    {"start", [](Modem& m) { return m.startGnss(kNow); }, {1, 0, 15, 0}, {off, starting, starting, running}},
    {"stop", [](Modem& m) { return m.stopGnss(kNow); }, {1, 0, 0, 0}, {off, off, off, off}},
    {"reset assistance",
     [](Modem& m) { return m.resetAssistance(kNow); },
     {1, 0, 15, 0},
     {off, off, starting, running}},
    {"LSTA", [](Modem& m) { return m.currentLsta(10, kNow); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"LSTA on", [](Modem& m) { return m.enableLsta(11, true, 0, kNow); }, {1, 0, 0, 0}, {off, off, starting, running}},
    {"LSTA off",
     [](Modem& m) { return m.enableLsta(12, false, 0, kNow); },
     {1, 0, 0, 0},
     {off, off, starting, running}},
};

TEST(Modem, AnswersEveryRequestInEveryStateLikeThis)
{
    for (const Row& row : kRows)
        for (std::size_t state = 0; state < kStates.size(); ++state) {
            Modem modem = modemIn(state);
            EXPECT_EQ(row.request(modem).code, row.codes[state]) << row.name << " while " << kStates[state];
            EXPECT_EQ(modem.engine(kNow), row.enginesAfter[state]) << row.name << " while " << kStates[state];
        }
}

TEST(Modem, IsOpenBetweenOpenAndClose)
{
    Modem modem(scenario(), nothing);
    EXPECT_FALSE(modem.isOpen());
    modem.open();
    EXPECT_TRUE(modem.isOpen());
    modem.close(kNow);
    EXPECT_FALSE(modem.isOpen());
}

TEST(Modem, StartsTheEngineForAsLongAsTheScenarioSays)
{
    Modem modem(scenario(), nothing);
    modem.open();
    modem.startGnss(milliseconds(1000));
    EXPECT_EQ(modem.engine(milliseconds(1000)), EngineState::starting);
    EXPECT_EQ(modem.engine(milliseconds(1599)), EngineState::starting);
    EXPECT_EQ(modem.engine(milliseconds(1600)), EngineState::running);
}

TEST(Modem, RunsTheEngineAtOnceWhenStartingTakesNoTime)
{
    Modem modem(scenario(), nothing);
    modem.setEngineStart(milliseconds(0));
    modem.open();
    modem.startGnss(milliseconds(1000));
    EXPECT_EQ(modem.engine(milliseconds(1000)), EngineState::running);
}

TEST(Modem, AnswersTheNameOfTheRawOutputToEveryStart)
{
    Modem modem = modemIn(1);
    EXPECT_EQ(modem.startGnss(milliseconds(0)).text, "/dev/output");
    EXPECT_EQ(modem.startGnss(milliseconds(300)).text, std::nullopt) << "while starting";
    EXPECT_EQ(modem.startGnss(milliseconds(9000)).text, "/dev/output") << "while running";
}

class FirstFix : public testing::Test
{
protected:
    FirstFix() { modem.open(); }

    /// How long the first fix takes in a run from `start` to `end`, without the engine's start.
    milliseconds ofARun(milliseconds start, milliseconds end)
    {
        modem.startGnss(start);
        const milliseconds firstFix = modem.firstFixAt() - start - milliseconds(600);
        modem.stopGnss(end);
        return firstFix;
    }

    Modem modem{scenario(), nothing};
};

TEST_F(FirstFix, TakesTheColdTimeAtFirst)
{
    EXPECT_EQ(ofARun(milliseconds(0), milliseconds(100)), milliseconds(20000));
}

TEST_F(FirstFix, TakesTheHotTimeAfterARunWithAFix)
{
    ofARun(milliseconds(0), milliseconds(20600));
    EXPECT_EQ(ofARun(milliseconds(30000), milliseconds(30100)), milliseconds(1500));
}

TEST_F(FirstFix, StaysColdAfterARunThatEndedBeforeTheFix)
{
    ofARun(milliseconds(0), milliseconds(20599));
    EXPECT_EQ(ofARun(milliseconds(30000), milliseconds(30100)), milliseconds(20000));
}

TEST_F(FirstFix, IsColdOnceAfterAssistanceWasReset)
{
    ofARun(milliseconds(0), milliseconds(25000));
    modem.resetAssistance(milliseconds(26000));
    EXPECT_EQ(ofARun(milliseconds(30000), milliseconds(60000)), milliseconds(20000));
    EXPECT_EQ(ofARun(milliseconds(70000), milliseconds(70100)), milliseconds(1500));
}

TEST_F(FirstFix, IsColdNextTimeWhenAssistanceIsResetWhileTheEngineRuns)
{
    modem.startGnss(milliseconds(0));
    modem.resetAssistance(milliseconds(21000));
    modem.stopGnss(milliseconds(30000));
    EXPECT_EQ(ofARun(milliseconds(40000), milliseconds(40100)), milliseconds(20000));
}

TEST_F(FirstFix, IsHotAfterTheConnectionWasClosedDuringARunWithAFix)
{
    modem.startGnss(milliseconds(0));
    modem.close(milliseconds(30000));
    modem.open();
    EXPECT_EQ(ofARun(milliseconds(40000), milliseconds(40100)), milliseconds(1500));
}

TEST(Modem, TellsByTheIndicatorWhetherAWriteChangedTheSetting)
{
    Modem modem = modemIn(1);
    EXPECT_EQ(modem.writeSetting("Nmea/FreqMs", R"("200")", kNow).indicator, 1);
    EXPECT_EQ(modem.readSetting("Nmea/FreqMs").text, R"("200")");
    EXPECT_EQ(modem.writeSetting("Nmea/FreqMs", R"("200")", kNow).indicator, 0);
}

TEST(Modem, RefusesSettingsItDoesNotKnowOrAccept)
{
    Modem modem = modemIn(1);
    EXPECT_EQ(modem.readSetting("No/Key").code, 16);
    EXPECT_EQ(modem.writeSetting("No/Key", R"("1")", kNow).code, 16);
    EXPECT_EQ(modem.writeSetting("Nmea/FreqMs", R"("300")", kNow).code, 13);
    EXPECT_EQ(modem.writeSetting("Nmea/FreqMs", "200", kNow).code, 13) << "without quotes";
    EXPECT_EQ(modem.writeSetting("Raw/Version", R"("2")", kNow).code, 38);
    EXPECT_EQ(modem.writeSetting("Nmea/FreqMs", R"("300")", kNow).indicator, std::nullopt);
}

TEST(Modem, KeepsSettingsOverCloseAndOpen)
{
    Modem modem = modemIn(1);
    modem.writeSetting("Power/Cpu", R"("max")", kNow);
    modem.close(kNow);
    modem.open();
    EXPECT_EQ(modem.readSetting("Power/Cpu").text, R"("max")");
}

TEST(Modem, TakesStartValuesOfSettingsFromTheScenario)
{
    Scenario changed = scenario();
    changed.settings["Power/Cpu"] = "max";
    Modem modem(changed, nothing);
    modem.open();
    EXPECT_EQ(modem.readSetting("Power/Cpu").text, R"("max")");
}

struct AtRow
{
    const char* command;
    int code;
    const char* answer;
};

TEST(Modem, AnswersAtCommandsLikeThis)
{
    const AtRow rows[] = {
        {"AT", 0, "OK"},
        {"at", 0, "OK"},
        {" AT+CSQ\r", 0, "+CSQ: 21,99\r\nOK"},
        {"ATI", 0, "KelArc\r\nSimulated modem\r\nRevision 1.0\r\nOK"},
        {"AT+CGMI", 0, "KelArc\r\nOK"},
        {"AT+CGMM", 0, "Simulated modem\r\nOK"},
        {"AT+CGMR", 0, "1.0\r\nOK"},
        {"AT+CGSN", 0, "000000000000000\r\nOK"},
        {"AT+CREG?", 0, "+CREG: 0,1\r\nOK"},
        {"at+cops?", 0, "+COPS: 0,0,\"Simulated network\"\r\nOK"},
        {"AT+UNKNOWN", 24, "ERROR"},
        {"", 24, "ERROR"},
        {"   ", 24, "ERROR"},
    };
    Modem modem = modemIn(1);
    for (const AtRow& row : rows) {
        EXPECT_EQ(modem.atCommand(row.command).code, row.code) << row.command;
        EXPECT_EQ(modem.atCommand(row.command).text, row.answer) << row.command;
    }
}

TEST(Modem, TellsItsTwoVersions)
{
    EXPECT_EQ(modemIn(1).versions().text, "RIL 1.0 (simulated)");
    EXPECT_EQ(modemIn(1).versions().secondText, "Modem 1.0 (simulated)");
}

}  // namespace
