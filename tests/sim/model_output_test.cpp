#include "sim/model_support.h"

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

using model_test::EnvironmentScenario;

/// Reads the raw output line by line.
class Reader
{
public:
    explicit Reader(const std::string& path) : m_file(open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC))
    {
        EXPECT_GE(m_file, 0) << path;
    }
    ~Reader() { close(m_file); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The next line that holds `part`; empty when none came in time.
    std::string lineWith(const std::string& part)
    {
        const auto end = std::chrono::steady_clock::now() + model_test::kLimit;
        while (std::chrono::steady_clock::now() < end) {
            const std::size_t lineEnd = m_received.find("\r\n");
            if (lineEnd == std::string::npos) {
                receive();
                continue;
            }
            const std::string line = m_received.substr(0, lineEnd);
            m_received.erase(0, lineEnd + 2);
            if (line.find(part) != std::string::npos)
                return line;
        }
        return "";
    }

private:
    void receive()
    {
        pollfd state{m_file, POLLIN, 0};
        poll(&state, 1, 1000);
        std::array<char, 512> buffer{};
        const ssize_t count = (state.revents & POLLIN) != 0 ? read(m_file, buffer.data(), buffer.size()) : 0;
        if (count > 0)
            m_received.append(buffer.data(), static_cast<std::size_t>(count));
    }

    int m_file;
    std::string m_received;
};

class RawOutput : public model_test::SimulatedModem
{
protected:
    std::string start()
    {
        std::array<char, 64> path{};
        EXPECT_EQ(ARC_StartGNSSraw(path.data(), 63), 0);
        return path.data();
    }
    void write(const char* key, const char* value)
    {
        EXPECT_EQ(ARC_CheckModuleSetting(key, value, nullptr, 0, nullptr), 0) << key;
    }
};

TEST_F(RawOutput, HasAFixAfterTheTimeThatTheScenarioGives)
{
    const EnvironmentScenario scenario(R"({"firstFix": {"coldMs": 0}, "settings": {"Nmea/FreqMs": "100"}})");
    ASSERT_EQ(ARC_Open(), 0);
    Reader reader(start());
    const std::string sentence = reader.lineWith("RMC,");
    EXPECT_NE(sentence.find(",A,"), std::string::npos) << sentence;
}

TEST_F(RawOutput, HasNoFixBeforeThatTime)
{
    const EnvironmentScenario scenario(R"({"firstFix": {"coldMs": 600000}, "settings": {"Nmea/FreqMs": "100"}})");
    ASSERT_EQ(ARC_Open(), 0);
    Reader reader(start());
    const std::string sentence = reader.lineWith("RMC,");
    EXPECT_NE(sentence.find(",V,"), std::string::npos) << sentence;
}

TEST_F(RawOutput, ChangesWhileItRunsWhenASettingChanges)
{
    const EnvironmentScenario scenario(R"({"firstFix": {"coldMs": 0}, "settings": {"Nmea/FreqMs": "100"}})");
    ASSERT_EQ(ARC_Open(), 0);
    Reader reader(start());
    EXPECT_NE(reader.lineWith("RMC,"), "");
    write("Nmea/Data/Format", "\"Raw\"");
    EXPECT_NE(reader.lineWith("$P"), "") << "a proprietary sentence";
    write("Nmea/Data/Format", "\"Nmea\"");
    EXPECT_NE(reader.lineWith("RMC,"), "");
}

TEST_F(RawOutput, StaysOnTheSamePathOverStopAndStart)
{
    ASSERT_EQ(ARC_Open(), 0);
    write("Nmea/FreqMs", "\"100\"");
    const std::string path = start();
    Reader reader(path);
    EXPECT_NE(reader.lineWith("RMC,"), "");
    EXPECT_EQ(ARC_StopGNSS(), 0);
    EXPECT_EQ(start(), path);
    EXPECT_NE(reader.lineWith("RMC,"), "");
}

int statusOf(int technologyId)
{
    LstaInfo record{};
    EXPECT_EQ(ARC_CurrentLSTA(technologyId, &record), 0);
    return record.status;
}

/// Waits until the receiver tracks a system, or no longer does.
bool waitForStatus(int technologyId, int status)
{
    const auto end = std::chrono::steady_clock::now() + model_test::kLimit;
    while (statusOf(technologyId) != status)
        if (std::chrono::steady_clock::now() > end)
            return false;
    return true;
}

TEST_F(RawOutput, TracksTheSystemsThatAreSwitchedOn)
{
    const EnvironmentScenario scenario(
        R"({"firstFix": {"coldMs": 0}, "settings": {"Nmea/FreqMs": "100", "Engine/Galileo": "0"}})");
    ASSERT_EQ(ARC_Open(), 0);
    start();
    EXPECT_TRUE(waitForStatus(10, 1));
    EXPECT_TRUE(waitForStatus(11, 1));
    EXPECT_EQ(statusOf(13), 0);
    write("Engine/Glonass", "\"0\"");
    write("Engine/Galileo", "\"1\"");
    EXPECT_TRUE(waitForStatus(11, 0));
    EXPECT_TRUE(waitForStatus(13, 1));
    EXPECT_EQ(ARC_StopGNSS(), 0);
    EXPECT_EQ(statusOf(10), 0);
}

TEST_F(RawOutput, LosesASystemWhoseLstaTheScenarioSetsToZero)
{
    const EnvironmentScenario scenario(R"({"firstFix": {"coldMs": 0},
        "settings": {"Nmea/FreqMs": "100", "Engine/Glonass": "0", "Engine/Galileo": "0", "Engine/Beidou": "0"},
        "lsta": [{"atMs": 300, "system": "GPS", "status": 0}]})");
    ASSERT_EQ(ARC_Open(), 0);
    Reader reader(start());
    EXPECT_NE(reader.lineWith(",A,"), "") << "a fix";
    EXPECT_NE(reader.lineWith(",V,"), "") << "the fix is lost with the only system";
}

TEST_F(RawOutput, SurvivesSettingsThatNoReceiverKnows)
{
    ASSERT_EQ(ARC_Open(), 0);
    arcsim::setSetting("Nmea/FreqMs", "\"never\"");
    arcsim::setSetting("Sens/MinElevAngle", "");
    const std::string path = start();
    Reader reader(path);
    EXPECT_NE(reader.lineWith("RMC,"), "");
}

TEST_F(RawOutput, ReplaysARecordingByteForByte)
{
    const std::string recording = testing::TempDir() + "recording." + std::to_string(getpid()) + ".nmea";
    std::ofstream(recording) << "$GPRMC,120000.00,A,4807.0380,N,01131.0000,E,022.4,084.4,230324,,,A*57\r\n";
    const EnvironmentScenario scenario(R"({"replay": {"file": ")" + recording + R"(", "speed": 10, "loop": true}})");
    ASSERT_EQ(ARC_Open(), 0);
    Reader reader(start());
    EXPECT_EQ(reader.lineWith("RMC,"), "$GPRMC,120000.00,A,4807.0380,N,01131.0000,E,022.4,084.4,230324,,,A*57");
    std::filesystem::remove(recording);
}

}  // namespace
