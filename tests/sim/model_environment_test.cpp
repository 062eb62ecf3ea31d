#include "sim/model_support.h"

#include <array>

namespace {

using model_test::EnvironmentScenario;
using model_test::readSetting;
using std::chrono::milliseconds;

class TheEnvironment : public model_test::SimulatedModem
{
protected:
    ~TheEnvironment() override
    {
        unsetenv("ARCSIM_SCENARIO");
        unsetenv("ARCSIM_REPLAY");
    }
};

TEST_F(TheEnvironment, NamesTheScenario)
{
    const EnvironmentScenario scenario(R"({"settings": {"Power/Cpu": "max"}})");
    ASSERT_EQ(ARC_Open(), 0);
    EXPECT_EQ(readSetting("Power/Cpu"), "\"max\"");
}

TEST_F(TheEnvironment, InjectsTheFaultsOfTheScenario)
{
    const EnvironmentScenario scenario(R"({"faults": [
        {"function": "ARC_Open", "call": 1, "code": 31, "latencyMs": 40},
        {"function": "ARC_CheckModuleSetting", "call": 2, "code": 2},
        {"function": "ARC_StopGNSS", "count": 1, "latencyMs": 40}]})");
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ARC_Open(), 31);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(40));
    EXPECT_FALSE(arcsim::isOpen());
    EXPECT_EQ(ARC_Open(), 0);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, nullptr), 0);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"std\"", nullptr, 0, nullptr), 2);
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"max\"");
    begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ARC_StopGNSS(), 0) << "only late";
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(40));
}

TEST_F(TheEnvironment, LetsTheRilDaemonDieAndTheClientLibraryKeepItsVersion)
{
    const EnvironmentScenario scenario(R"({"outages": [{"atMs": 0, "forMs": 86400000}]})");
    EXPECT_EQ(ARC_Open(), 31);
    EXPECT_FALSE(arcsim::isOpen());
    EXPECT_STREQ(ARC_GetArcVersion(), "ArcRilD 1.0 (simulated)");
    EXPECT_EQ(ARC_RegisterNotification(nullptr), 31);
}

TEST_F(TheEnvironment, LetsScriptsGoBeforeTheScenario)
{
    const EnvironmentScenario scenario(R"({"faults": [{"function": "ARC_Open", "call": 1, "code": 31}]})");
    arcsim::Answer answer;
    answer.code = 39;
    arcsim::answerNext(arcsim::Function::Open, {answer});
    EXPECT_EQ(ARC_Open(), 39);
}

TEST_F(TheEnvironment, WithABadScenarioMakesEveryCallAnswerThatThereIsNoConnection)
{
    testing::internal::CaptureStderr();
    const EnvironmentScenario scenario(R"({"seed": "one"})");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "simulated modem: " + scenario.path() +
                  ":1: seed: \"one\" is not accepted; accepted: a whole number from 0 to 4294967295\n");
    std::array<char, 64> text{};
    std::array<char, 64> more{};
    LstaInfo record{};
    EXPECT_EQ(ARC_SetNotificationMethod(1), 31);
    EXPECT_EQ(ARC_Open(), 31);
    EXPECT_EQ(ARC_Close(), 31);
    EXPECT_EQ(ARC_RegisterNotification(nullptr), 31);
    EXPECT_EQ(ARC_GetRilVersion(text.data(), more.data(), 64), 31);
    EXPECT_EQ(ARC_EnableLogging(1, ""), 31);
    EXPECT_EQ(ARC_AtcTunneling("AT", nullptr), 31);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", nullptr, text.data(), 63, nullptr), 31);
    EXPECT_EQ(ARC_StartGNSSraw(text.data(), 63), 31);
    EXPECT_EQ(ARC_StopGNSS(), 31);
    EXPECT_EQ(ARC_ForceStopGNSS(), 31);
    EXPECT_EQ(ARC_ResetAGNSS(), 31);
    EXPECT_EQ(ARC_CurrentLSTA(10, &record), 31);
    EXPECT_EQ(ARC_EnableLSTA(10, true, 0), 31);
    EXPECT_STREQ(ARC_GetArcVersion(), "ArcRilD 1.0 (simulated)");
}

TEST_F(TheEnvironment, NamingAMissingScenarioIsAnError)
{
    setenv("ARCSIM_SCENARIO", "/nowhere/s.json", 1);
    testing::internal::CaptureStderr();
    arcsim::reset();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "simulated modem: /nowhere/s.json: cannot be read: No such file or "
              "directory; accepted: the name of a scenario file\n");
    EXPECT_EQ(ARC_Open(), 31);
}

TEST_F(TheEnvironment, NamingAMissingRecordingIsAnError)
{
    setenv("ARCSIM_REPLAY", "/nowhere/drive.nmea", 1);
    testing::internal::CaptureStderr();
    arcsim::reset();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("/nowhere/drive.nmea"), std::string::npos);
    EXPECT_EQ(ARC_Open(), 31);
}

TEST_F(TheEnvironment, WithEmptyNamesIsAsWithoutThem)
{
    setenv("ARCSIM_SCENARIO", "", 1);
    setenv("ARCSIM_REPLAY", "", 1);
    arcsim::reset();
    EXPECT_EQ(ARC_Open(), 0);
}

}  // namespace
