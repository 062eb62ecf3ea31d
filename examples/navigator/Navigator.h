#pragma once

#include "navigator/Options.h"
#include "navigator/Report.h"
#include "navigator/Requests.h"
#include "navigator/Trip.h"
#include "nmea/Device.h"
#include "nmea/EpochBuilder.h"
#include "nmea/NmeaReader.h"

#include <memory>
#include <optional>
#include <system_error>

namespace navigator {

/// One run of the program, with its steps in the order that suits an application.
class Navigator
{
public:
    Navigator(kelarc::KelArc& modem, const support::Interrupt& interrupt, const Options& options);

    /// Returns the exit code. Ends the process instead when the library cannot be destroyed without waiting for a
    /// request that may never end.
    int run();

private:
    void connect();
    void prepare();
    void startOutput();
    std::string askForOutput();
    void navigate();
    void openDevice();
    void readDevice();
    void recover();
    void loseDevice(const std::system_error& error);
    void take(const std::optional<nmea::Epoch>& epoch);
    void end();
    void stopAndClose();
    void fail(int exitCode, const std::string& text);
    std::chrono::milliseconds sinceStart() const;

    kelarc::KelArc& m_modem;
    const Options m_options;
    Report m_report;
    Requests m_requests;
    int m_exitCode = 0;
    bool m_isStarted = false;  ///< the start of the output was asked for

    std::string m_devicePath;
    std::unique_ptr<nmea::Device> m_device;   ///< none while it is lost
    bool m_hasReadDevice = false;             ///< anything, since it was opened last
    std::optional<std::system_error> m_loss;  ///< of the device; nothing has come since
    bool m_hasToldLoss = false;
    Clock::time_point m_nextTry{};
    nmea::NmeaReader m_reader;
    nmea::EpochBuilder m_builder;
    Trip m_trip;
    Clock::time_point m_outputBegin{};
    std::chrono::milliseconds m_outputTime{};
    Clock::time_point m_lastBytes{};
    Clock::time_point m_lastSentence{};
    bool m_isSilent = false;  ///< and that has been said
    Clock::time_point m_lastLine{};
    std::optional<int> m_shownSecond;
};

}  // namespace navigator
