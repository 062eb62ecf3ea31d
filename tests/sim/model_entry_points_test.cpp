#include "sim/model_support.h"

#include <array>
#include <cstring>

namespace {

using arcsim::Engine;
using arcsim::Function;
using model_test::OpenModem;
using model_test::readSetting;
using model_test::SimulatedModem;

void ignoreEvent(int, void*, int) {}

TEST_F(SimulatedModem, AnswersOneToEverythingThatNeedsAnOpenConnection)
{
    std::array<char, 64> first{};
    std::array<char, 64> second{};
    LstaInfo record{};
    int indicator = 2;
    EXPECT_EQ(ARC_Close(), 1);
    EXPECT_EQ(ARC_GetRilVersion(first.data(), second.data(), 64), 1);
    EXPECT_EQ(ARC_EnableLogging(1, "all"), 1);
    EXPECT_EQ(ARC_AtcTunneling("AT", nullptr), 1);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", nullptr, first.data(), 63, nullptr), 1);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator), 1);
    EXPECT_EQ(ARC_StartGNSSraw(first.data(), 63), 1);
    EXPECT_EQ(ARC_StopGNSS(), 1);
    EXPECT_EQ(ARC_ForceStopGNSS(), 1);
    EXPECT_EQ(ARC_ResetAGNSS(), 1);
    EXPECT_EQ(ARC_CurrentLSTA(10, &record), 1);
    EXPECT_EQ(ARC_EnableLSTA(10, true, 0), 1);
    EXPECT_EQ(indicator, 2) << "a refused write stores nothing";
    EXPECT_STREQ(first.data(), "");
    EXPECT_EQ(record.indicator, 0);
}

TEST_F(SimulatedModem, AnswersWhatTheClientLibraryKnowsItselfBeforeOpen)
{
    EXPECT_EQ(ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD), 0);
    EXPECT_EQ(ARC_SetNotificationMethod(0), 13);
    EXPECT_EQ(ARC_RegisterNotification(ignoreEvent), 0);
    EXPECT_EQ(ARC_RegisterNotification(nullptr), 0);
    EXPECT_STREQ(ARC_GetArcVersion(), "ArcRilD 1.0 (simulated)");
}

TEST_F(SimulatedModem, PrefersTheClosedConnectionToOtherRefusals)
{
    EXPECT_EQ(ARC_CheckModuleSetting(nullptr, nullptr, nullptr, 0, nullptr), 1);
    EXPECT_EQ(ARC_StartGNSSraw(nullptr, 0), 1);
}

TEST_F(SimulatedModem, OpensAndClosesTheConnection)
{
    EXPECT_FALSE(arcsim::isOpen());
    EXPECT_EQ(ARC_Open(), 0);
    EXPECT_TRUE(arcsim::isOpen());
    EXPECT_EQ(ARC_Open(), 0) << "open already";
    EXPECT_EQ(ARC_Close(), 0);
    EXPECT_FALSE(arcsim::isOpen());
    EXPECT_EQ(ARC_Close(), 1);
}

TEST_F(OpenModem, MissesMandatoryParameters)
{
    std::array<char, 64> buffer{};
    EXPECT_EQ(ARC_GetRilVersion(nullptr, buffer.data(), 64), 14);
    EXPECT_EQ(ARC_GetRilVersion(buffer.data(), nullptr, 64), 14);
    EXPECT_EQ(ARC_EnableLogging(1, nullptr), 14);
    EXPECT_EQ(ARC_AtcTunneling(nullptr, buffer.data()), 14);
    EXPECT_EQ(ARC_CheckModuleSetting(nullptr, nullptr, buffer.data(), 63, nullptr), 14);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", nullptr, nullptr, 63, nullptr), 14);
    EXPECT_EQ(ARC_StartGNSSraw(nullptr, 63), 14);
    EXPECT_EQ(ARC_CurrentLSTA(10, nullptr), 14);
}

TEST_F(OpenModem, RefusesParametersThatMakeNoSense)
{
    std::array<char, 64> buffer{};
    LstaInfo record{};
    EXPECT_EQ(ARC_GetRilVersion(buffer.data(), buffer.data(), 0), 13);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", nullptr, buffer.data(), 0, nullptr), 13);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", buffer.data(), 63, nullptr), 13)
        << "neither read nor write";
    EXPECT_EQ(ARC_StartGNSSraw(buffer.data(), -1), 13);
    EXPECT_EQ(ARC_CurrentLSTA(14, &record), 13);
    EXPECT_EQ(ARC_EnableLSTA(9, true, 0), 13);
    EXPECT_EQ(arcsim::engine(), Engine::Off);
}

TEST_F(OpenModem, WritesASettingAndTellsWhetherItChanged)
{
    int indicator = 2;
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator), 0);
    EXPECT_EQ(indicator, 1);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator), 0);
    EXPECT_EQ(indicator, 0);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"std\"", nullptr, 0, nullptr), 0)
        << "nobody asks for the indicator";
    EXPECT_EQ(readSetting("Power/Cpu"), "\"std\"");
}

TEST_F(OpenModem, RefusesUnknownKeysAndWrongValues)
{
    int indicator = 2;
    std::array<char, 64> buffer{};
    EXPECT_EQ(ARC_CheckModuleSetting("", nullptr, buffer.data(), 63, nullptr), 16);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Gpu", "\"1\"", nullptr, 0, &indicator), 16);
    EXPECT_EQ(ARC_CheckModuleSetting("Nmea/FreqMs", "\"1\"", nullptr, 0, &indicator), 13);
    EXPECT_EQ(ARC_CheckModuleSetting("Raw/Version", "\"1\"", nullptr, 0, &indicator), 38);
    EXPECT_EQ(indicator, 2);
}

TEST_F(OpenModem, HandsOverASettingThatWasForcedOnIt)
{
    arcsim::setSetting("Power/Cpu", "gibberish");
    EXPECT_EQ(readSetting("Power/Cpu"), "gibberish");
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "gibberish");
    EXPECT_EQ(arcsim::setting("No/Key"), "");
}

/// A buffer that shows which of its bytes were written.
struct Marked
{
    Marked() { bytes.fill('#'); }
    std::string text() const { return {bytes.begin(), bytes.end()}; }
    std::array<char, 8> bytes{};
};

TEST_F(OpenModem, GivesWhatFitsOfAReplyAndSaysSo)
{
    Marked reply;
    EXPECT_EQ(ARC_CheckModuleSetting("Nmea/FreqMs", nullptr, reply.bytes.data(), 4, nullptr), 33);
    EXPECT_EQ(reply.text(), "\"100####");
}

TEST_F(OpenModem, FillsABufferToItsLastByteWithoutATerminator)
{
    Marked reply;
    EXPECT_EQ(ARC_CheckModuleSetting("Nmea/FreqMs", nullptr, reply.bytes.data(), 6, nullptr), 0);
    EXPECT_EQ(reply.text(), "\"1000\"##");
}

TEST_F(OpenModem, TerminatesAReplyThatLeavesRoom)
{
    Marked reply;
    EXPECT_EQ(ARC_CheckModuleSetting("Nmea/FreqMs", nullptr, reply.bytes.data(), 7, nullptr), 0);
    EXPECT_EQ(reply.text(), std::string("\"1000\"\0#", 8));
}

TEST_F(OpenModem, TellsBothVersions)
{
    std::array<char, 64> first{};
    std::array<char, 64> second{};
    EXPECT_EQ(ARC_GetRilVersion(first.data(), second.data(), 64), 0);
    EXPECT_STREQ(first.data(), "RIL 1.0 (simulated)");
    EXPECT_STREQ(second.data(), "Modem 1.0 (simulated)");
    Marked small;
    EXPECT_EQ(ARC_GetRilVersion(first.data(), small.bytes.data(), 8), 33);
    EXPECT_EQ(small.text(), "Modem 1.");
}

TEST_F(OpenModem, AnswersAtCommandsWithAndWithoutABuffer)
{
    std::array<char, 64> answer{};
    EXPECT_EQ(ARC_AtcTunneling("AT+CGMR", answer.data()), 0);
    EXPECT_STREQ(answer.data(), "1.0\r\nOK");
    EXPECT_EQ(ARC_AtcTunneling("AT+CGMR", nullptr), 0);
    EXPECT_EQ(ARC_AtcTunneling("AT+NONSENSE", answer.data()), 24);
    EXPECT_STREQ(answer.data(), "ERROR");
}

TEST_F(OpenModem, AcceptsAnyLoggingZone)
{
    EXPECT_EQ(ARC_EnableLogging(0, ""), 0);
    EXPECT_EQ(ARC_EnableLogging(-7, "text"), 0);
}

TEST_F(OpenModem, StartsAndStopsTheEngine)
{
    std::array<char, 64> path{};
    EXPECT_EQ(ARC_StartGNSSraw(path.data(), 63), 0);
    EXPECT_EQ(arcsim::engine(), Engine::Running);
    EXPECT_EQ(std::string(path.data()).substr(0, 5), "/dev/");
    EXPECT_EQ(ARC_StopGNSS(), 0);
    EXPECT_EQ(arcsim::engine(), Engine::Off);
    EXPECT_EQ(ARC_StopGNSS(), 0) << "off already";
    EXPECT_EQ(ARC_StartGNSSraw(path.data(), 63), 0);
    EXPECT_EQ(ARC_ForceStopGNSS(), 0);
    EXPECT_EQ(arcsim::engine(), Engine::Off);
    EXPECT_EQ(ARC_ForceStopGNSS(), 0) << "off already";
}

TEST_F(OpenModem, StartsTheEngineThoughThePathDoesNotFit)
{
    Marked path;
    EXPECT_EQ(ARC_StartGNSSraw(path.bytes.data(), 5), 33);
    EXPECT_EQ(path.text(), "/dev/###");
    EXPECT_EQ(arcsim::engine(), Engine::Running);
}

TEST_F(OpenModem, IsBusyWhileTheEngineStarts)
{
    arcsim::setRealisticLatency(true);
    std::array<char, 64> path{};
    ASSERT_EQ(ARC_StartGNSSraw(path.data(), 63), 0);
    ASSERT_EQ(arcsim::engine(), Engine::Starting);
    EXPECT_EQ(ARC_StopGNSS(), 0) << "a start can be cut short";
    EXPECT_EQ(arcsim::engine(), Engine::Off);
}

TEST_F(OpenModem, EndsTheStartByItself)
{
    arcsim::setRealisticLatency(true);
    std::array<char, 64> path{};
    ASSERT_EQ(ARC_StartGNSSraw(path.data(), 63), 0);
    const auto end = std::chrono::steady_clock::now() + model_test::kLimit;
    int busy = 15;
    while (busy == 15 && std::chrono::steady_clock::now() < end)  // each attempt takes its time
        busy = ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, nullptr);
    EXPECT_EQ(busy, 0);
    EXPECT_EQ(arcsim::engine(), Engine::Running);
}

TEST_F(OpenModem, FillsTheWholeLstaRecord)
{
    LstaInfo record{};
    std::memset(&record, 0x5A, sizeof record);
    EXPECT_EQ(ARC_CurrentLSTA(12, &record), 0);
    EXPECT_EQ(record.indicator, 1002);
    EXPECT_EQ(record.status, 0);
    EXPECT_EQ(record.value, 0.0);
    EXPECT_EQ(record.reserved4, 0);
    EXPECT_EQ(record.reserved12, 0);
    for (const unsigned char byte : record.reserved24)
        EXPECT_EQ(byte, 0);
}

TEST_F(OpenModem, ForgetsEverythingOnReset)
{
    arcsim::setSetting("Power/Cpu", "\"max\"");
    std::array<char, 64> path{};
    ARC_StartGNSSraw(path.data(), 63);
    arcsim::reset();
    EXPECT_FALSE(arcsim::isOpen());
    EXPECT_EQ(arcsim::engine(), Engine::Off);
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"std\"");
    EXPECT_TRUE(arcsim::calls().empty());
}

struct Slow
{
    const char* name;
    std::function<int()> call;
    int leastMs;
};

TEST_F(OpenModem, TakesAsLongAsAUnitForItsAnswersWhenAskedTo)
{
    arcsim::setRealisticLatency(true);
    std::array<char, 64> text{};
    const Slow calls[] = {
        {"open", [] { return ARC_Open(); }, 280},
        {"setting", [] { return ARC_CheckModuleSetting("Power/Psm", "\"1\"", nullptr, 0, nullptr); }, 5},
        {"start", [&] { return ARC_StartGNSSraw(text.data(), 63); }, 130},
        {"stop", [] { return ARC_StopGNSS(); }, 90},
        {"reset", [] { return ARC_ResetAGNSS(); }, 60},
        {"close", [] { return ARC_Close(); }, 60},
    };
    for (const Slow& each : calls) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(each.call(), 0) << each.name;
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(each.leastMs)) << each.name;
    }
}

}  // namespace
