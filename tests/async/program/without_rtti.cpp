// Compiled without RTTI: a request that is answered, one that is dropped and one that is late.

#include "kelarc/async.h"
#include "kelarc/idle.h"
#include "kelarc/logsink.h"

#include <cstdio>

int main()
{
    using kelarc::KelArc;
    using kelarc::async::request;
    kelarc::async::Timer timer;
    KelArc modem(kelarc::logsink::toStderr());
    std::printf("answered: %d\n", request(modem, timer.within(std::chrono::seconds(30)), &KelArc::open).get());
    try {
        request(modem, &KelArc::open).get();
    } catch (const std::future_error&) {
        std::printf("dropped\n");
    }
    try {
        request(modem, timer.within(std::chrono::milliseconds(0)), &KelArc::startRawGNSS).get();
    } catch (const kelarc::async::TimedOut&) {
        std::printf("late\n");
    }
    request(modem, &KelArc::close).get();
    return kelarc::waitUntilIdle(modem, std::chrono::seconds(30)) ? 0 : 1;
}
