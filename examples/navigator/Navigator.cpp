#include "navigator/Navigator.h"

#include "kelarc/idle.h"
#include "navigator/Configuration.h"
#include "navigator/ExitCode.h"
#include "navigator/LogOutput.h"
#include "navigator/ReportText.h"
#include "nmea/Device.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace navigator {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLongestEnd{5000};  // for each step of ending after something has gone wrong
constexpr milliseconds kSilence{5000};     // without a sentence, until that is said
constexpr milliseconds kLineSpacing{950};  // while no UTC tells the seconds
constexpr milliseconds kTryAgain{1000};    // after a device that gave nothing
constexpr int kMostBytesShown = 8;

Notification copyOf(kelarc::NOTIFY_ID id, const void* data, int length)
{
    Notification notification{id, length, {}};
    if (const auto* const bytes = static_cast<const unsigned char*>(data))
        notification.start.assign(bytes, bytes + std::clamp(length, 0, kMostBytesShown));
    return notification;
}

}  // namespace

Navigator::Navigator(kelarc::KelArc& modem, const support::Interrupt& interrupt, const Options& options)
    : m_modem(modem), m_options(options), m_report(options.color),
      m_requests(modem, interrupt, options.timeout, [this](const ModemEvent& event) { m_report.event(event); })
{
}

int Navigator::run()
{
    try {
        connect();
        prepare();
        startOutput();
        navigate();
    } catch (const Failure& failure) {
        fail(failure.exitCode(), failure.what());
    } catch (const std::system_error& error) {
        fail(kExitDevice, error.what());
    }
    end();
    return m_exitCode;
}

void Navigator::connect()
{
    m_modem.setNotificationCB([inbox = m_requests.inbox()](kelarc::NOTIFY_ID id, void* data, int length) {
        inbox->put(copyOf(id, data, length));
    });
    const auto [code] = m_requests.ask<int>("open the modem", [&](auto&& callback) { m_modem.open(callback); });
    if (code != 0)
        throw Failure(kExitRefused, format("the modem refused to be opened with result code %d", code));
}

void Navigator::prepare()
{
    const int refusals = showVersions(m_requests, m_report) + showSettings(m_requests, m_report) +
                         configureReceiver(m_requests, m_report, m_options) + enableLsta(m_requests, m_report);
    if (refusals > 0)  // navigation may be possible all the same
        m_exitCode = kExitRefused;
}

void Navigator::startOutput()
{
    m_report.heading("Starting the receiver's output");
    m_isStarted = true;
    m_devicePath = askForOutput();
    m_report.item("sentences come on", m_devicePath);
}

std::string Navigator::askForOutput()
{
    auto [code, path] =
        m_requests.ask<int, std::string>("start the output", [&](auto&& callback) { m_modem.startRawGNSS(callback); });
    if (code != 0)
        throw Failure(kExitRefused, format("the modem refused to start the output with result code %d", code));
    return path;
}

void Navigator::navigate()
{
    m_outputBegin = m_lastBytes = m_lastSentence = Clock::now();
    openDevice();
    m_report.explainColumns(
        {true, m_options.glonass, m_options.galileo, m_options.beidou, m_options.qzss, m_options.sbas});
    const Clock::time_point end = m_options.duration ? m_outputBegin + *m_options.duration : Clock::time_point::max();
    // A receiver sends its epoch in one go; a pause of this length ends it before the next one begins.
    const milliseconds gap{std::min(300, m_options.periodMs / 2)};

    for (Clock::time_point now = m_outputBegin; now < end && m_report.isHeard(); now = Clock::now()) {
        const Clock::time_point epochEnd = m_builder.isPending() ? m_lastBytes + gap : Clock::time_point::max();
        const Clock::time_point silence = m_isSilent ? Clock::time_point::max() : m_lastSentence + kSilence;
        const Clock::time_point nextTry = m_device ? Clock::time_point::max() : m_nextTry;
        const Ready ready =
            m_requests.wait(m_device ? m_device->descriptor() : -1, std::min({end, epochEnd, silence, nextTry}));
        if (ready.interrupt)
            break;
        if (ready.device)
            readDevice();
        else if (Clock::now() >= epochEnd)
            take(m_builder.flush());
        if (Clock::now() >= nextTry)
            recover();
        m_outputTime = sinceStart();
        if (Clock::now() >= silence) {
            m_isSilent = true;
            say("no sentence has come for %d s; waiting for more", static_cast<int>(kSilence.count() / 1000));
        }
    }
    take(m_builder.flush());
}

void Navigator::openDevice()
{
    try {
        m_device = std::make_unique<nmea::Device>(m_devicePath);
    } catch (const std::system_error& error) {
        loseDevice(error);
    }
}

void Navigator::readDevice()
{
    std::string bytes;
    try {
        bytes = m_device->read();
    } catch (const std::system_error& error) {
        loseDevice(error);
    }
    if (bytes.empty())
        return;
    m_lastBytes = Clock::now();
    m_hasReadDevice = true;
    m_hasToldLoss = false;
    m_loss.reset();
    for (const nmea::Sentence& sentence : m_reader.read(bytes)) {
        m_lastSentence = m_lastBytes;
        m_isSilent = false;
        take(m_builder.add(sentence));
    }
}

/// The client library may not restore its connection, so everything is requested again, in this order; the modem keeps
/// the settings. The library repeats opening until the daemon is back.
void Navigator::recover()
{
    if (m_modem.isOpen())  // afterwards it is not, whatever the answer
        m_requests.ask<int>("close the modem", [&](auto&& callback) { m_modem.close(callback); });
    connect();
    listenToLsta(m_requests);
    m_devicePath = askForOutput();
    openDevice();
}

/// The RIL daemon may have died and its terminal with it, before the first byte too.
void Navigator::loseDevice(const std::system_error& error)
{
    m_device.reset();
    m_nextTry = Clock::now();
    if (!m_loss)
        m_loss = error;
    if (std::exchange(m_hasReadDevice, false))
        return;
    // Another try may only lose it again. The first failure is reported.
    if (m_nextTry - m_lastBytes >= m_options.timeout)
        throw std::system_error(*m_loss);
    if (!std::exchange(m_hasToldLoss, true))
        say("%s; opening the modem again", m_loss->what());
    m_nextTry += kTryAgain;
}

void Navigator::take(const std::optional<nmea::Epoch>& epoch)
{
    if (!epoch)
        return;
    m_trip.add(*epoch, sinceStart());
    const Clock::time_point now = Clock::now();
    const std::optional<int> second = epoch->utcMs ? std::optional(*epoch->utcMs / 1000) : std::nullopt;
    const bool isNextSecond = second && m_shownSecond ? second != m_shownSecond : now - m_lastLine >= kLineSpacing;
    if (!isNextSecond)
        return;
    m_shownSecond = second;
    m_lastLine = now;
    m_report.epoch(*epoch);
}

void Navigator::end()
{
    // After a failure there is little hope for the rest, so little time is spent on it.
    const bool isOrderly = m_exitCode == kExitOk || m_exitCode == kExitRefused;
    const milliseconds timeout = m_options.timeout;
    m_requests.beginEnd(isOrderly ? timeout : std::min(timeout, kLongestEnd));
    try {
        stopAndClose();
    } catch (const Failure& failure) {
        fail(failure.exitCode(), failure.what());
    }
    if (m_outputBegin != Clock::time_point{})
        m_report.summary({m_trip, m_reader.counters(), m_outputTime});
    if (m_report.isLost() || isLogLost())
        fail(kExitOutput, m_report.isLost() ? "the results could not be written" : "the log could not be written");
    if (kelarc::waitUntilIdle(m_modem, std::chrono::seconds(1)))
        return;
    // Destroying the library would wait for the request that runs, perhaps for ever.
    say("leaving while the library is still at: %s", m_modem.getRunningTaskName().c_str());
    std::fflush(stdout);
    std::_Exit(m_exitCode);
}

void Navigator::stopAndClose()
{
    if (m_isStarted) {
        const auto [code] =
            m_requests.ask<int>("stop the output", [&](auto&& callback) { m_modem.stopGNSS(callback); });
        if (code != 0)
            fail(kExitRefused, format("the modem refused to stop the output with result code %d", code));
    }
    if (!m_modem.isOpen())
        return;
    const auto [code] = m_requests.ask<int>("close the modem", [&](auto&& callback) { m_modem.close(callback); });
    if (code != 0)
        fail(kExitRefused, format("the modem refused to be closed with result code %d", code));
}

void Navigator::fail(int exitCode, const std::string& text)
{
    say("%s", text.c_str());
    if (m_exitCode == kExitOk || m_exitCode == kExitRefused)  // the first failure counts
        m_exitCode = exitCode;
}

milliseconds Navigator::sinceStart() const
{
    return std::chrono::duration_cast<milliseconds>(Clock::now() - m_outputBegin);
}

}  // namespace navigator
