// The excerpts of docs/guide, as one program that runs. The marks around the excerpts are for doxygen.

#include "kelarc/KelArc.h"
#include "kelarc/async.h"
#include "kelarc/logsink.h"
#include "kelarc/names.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace {

using kelarc::KelArc;
using kelarc::async::request;
using kelarc::async::Timer;
using kelarc::lsta::TECH;
using kelarc::lsta::TYPE;

//! [promise]
/// True when the object is open afterwards. For any thread but the worker.
bool openAndWait(KelArc& modem)
{
    // The callback owns the promise: when the library destroys the callback without calling it, because the object is
    // open already or the queue is full, the promise breaks, and get() throws instead of waiting for ever.
    auto opened = std::make_shared<std::promise<int>>();
    std::future<int> answer = opened->get_future();
    modem.open([opened = std::move(opened)](int code) { opened->set_value(code); });
    try {
        return answer.get() == 0;
    } catch (const std::future_error&) {
        return modem.isOpen();
    }
}
//! [promise]

//! [opening]
/// Opens the modem, however long it takes, and reports the state every ten seconds. False when the modem is no longer
/// wanted.
bool openPatiently(KelArc& modem, const std::atomic<bool>& isWanted)
{
    kelarc::async::Opening opening(modem);
    while (!opening.waitFor(std::chrono::seconds(10))) {
        if (!isWanted)
            return false;
        std::fprintf(stderr, "Not open yet: %s\n", kelarc::logsink::printable(modem.getRunningTaskName()).c_str());
    }
    return true;
}
//! [opening]

//! [chain]
/// One request after the other, without waiting on the worker: each answer makes the next request.
void raiseElevation(KelArc& modem, std::shared_ptr<std::promise<bool>> done)
{
    modem.getMinElevation([&modem, done](int code, unsigned char elevation) {
        if (code != 0 || elevation >= 10) {
            done->set_value(code == 0);
            return;
        }
        modem.setMinElevation(10, [done](int, bool changed) { done->set_value(changed); });
    });
}
//! [chain]

//! [cancel]
/// The terminal that carries the receiver's sentences; empty when the receiver did not start in time.
std::string startReceiver(KelArc& modem, std::chrono::seconds limit)
{
    auto started = request(modem, &KelArc::startRawGNSS);  // repeated until it succeeds or is cancelled
    if (started.wait_for(limit) != std::future_status::ready) {
        // Makes the object inactive at once, which ends the repetition; active again by the time of the answer.
        request(modem, &KelArc::stopGNSS).get();
    }
    const auto [code, terminal] = started.get();  // of the last attempt, if it was cancelled
    return code == 0 ? terminal : std::string();
}
//! [cancel]

//! [full queue]
/// The result code, or -1 when the request was dropped.
int reset(KelArc& modem)
{
    try {
        return request(modem, &KelArc::resetAGNSS).get();
    } catch (const std::future_error&) {
        std::fprintf(stderr, "%u requests wait behind %s\n", modem.getPendingTasks(),
                     kelarc::logsink::printable(modem.getRunningTaskName()).c_str());
        return -1;
    }
}
//! [full queue]

//! [lsta]
void listen(KelArc& modem)
{
    // First: without a notification callback, LSTA notifications are dropped as well.
    modem.setNotificationCB(
        [](kelarc::NOTIFY_ID id, void*, int) { std::printf("Notification %d\n", static_cast<int>(id)); });
    modem.setLstaGnssStatus(
        TECH::GLONASS, true, 0,
        [](TYPE, int status, double value) { std::printf("LSTA of GLONASS: %d, %.1f\n", status, value); },
        [](int code) { std::fprintf(stderr, "LSTA cannot be switched on: %d\n", code); });  // failures only
}
//! [lsta]

//! [names]
/// Prints a report, and asks for the present LSTA of the same system.
void showLsta(KelArc& modem, TYPE type, int status, double value)
{
    std::printf("LSTA of %s: status %d, value %.1f\n", to_string(type), status, value);
    if (const std::optional<TECH> tech = kelarc::lsta::techOf(type))
        modem.getLstaGnss(*tech, [](int, bool isOn, int now) { std::printf("Now %d, %d\n", isOn, now); });
}
//! [names]

//! [recover]
/// Empty while the modem refuses. Waits as long as the RIL daemon is away.
std::string recover(KelArc& modem)
{
    if (modem.isOpen())
        request(modem, &KelArc::close).get();  // afterwards it is not open, whatever the answer: up to 15 attempts
    if (!openAndWait(modem))
        return {};
    listen(modem);  // opening registers nothing, neither notifications nor LSTA
    return startReceiver(modem, std::chrono::seconds(30));
}
//! [recover]

//! [close]
/// Afterwards the object can be destroyed: nothing waits, and no event is on its way.
bool closeInTime(KelArc& modem, const Timer& timer)
{
    try {
        request(modem, timer.within(std::chrono::seconds(30)), &KelArc::close).get();
        return true;
    } catch (const kelarc::async::TimedOut&) {
        return false;  // something is repeated for ever; the destructor would wait for it
    } catch (const std::future_error&) {
        return !modem.isOpen();  // it was closed already, or the queue is full
    }
}
//! [close]

}  // namespace

int main()
{
    //! [log]
    kelarc::async::Timer timer;
    KelArc modem(kelarc::logsink::toStderr(kelarc::logsink::kWarning));
    //! [log]
    if (!openAndWait(modem))
        return EXIT_FAILURE;
    auto raised = std::make_shared<std::promise<bool>>();
    std::future<bool> isRaised = raised->get_future();
    raiseElevation(modem, std::move(raised));
    std::printf("Elevation %s\n", isRaised.get() ? "raised" : "as it was");
    listen(modem);
    const std::string terminal = startReceiver(modem, std::chrono::seconds(30));
    std::printf("Sentences %s\n", terminal.empty() ? "nowhere" : "on a terminal");
    std::printf("Sentences again %s\n", recover(modem).empty() ? "nowhere" : "on a terminal");
    std::printf("Stopped with %d\n", request(modem, &KelArc::stopGNSS).get());
    showLsta(modem, TYPE::BEIDOU, 1, 0);  // answered before what comes behind it
    std::printf("Reset with %d\n", reset(modem));
    modem.setLstaGnssStatus(TECH::GLONASS, false, 0, {}, [](int) {});
    const std::atomic<bool> isWanted{true};
    if (closeInTime(modem, timer) && openPatiently(modem, isWanted) && closeInTime(modem, timer)) {
        std::printf("Closed\n");
        return EXIT_SUCCESS;
    }
    std::_Exit(EXIT_FAILURE);
}
