// Reads settings of the modem's receiver with futures. Handles no signals; first_program.cpp gives the reason.

#include "kelarc/KelArc.h"
#include "kelarc/async.h"
#include "kelarc/logsink.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>

namespace {

using kelarc::KelArc;
using kelarc::async::request;

int showSettings(KelArc& modem, const kelarc::async::Timer::Limit& soon)
{
    // Three requests at once; the modem answers them one after the other.
    auto elevation = request(modem, soon, &KelArc::getMinElevation);
    auto glonass = request(modem, soon, &KelArc::getGnssStatus, kelarc::gnss::SYSTEM::GLONASS);
    auto versions = request(modem, soon, &KelArc::getRilVersion);

    const auto [elevationCode, degrees] = elevation.get();
    const auto [glonassCode, system, state] = glonass.get();
    const auto [versionCode, texts] = versions.get();
    if (elevationCode != 0 || glonassCode != 0 || versionCode != 0)
        return EXIT_FAILURE;  // the log says which, and why
    std::printf("Satellites below %d degrees are not used, those of GLONASS are%s.\n", degrees,
                state == kelarc::RESULT::ON ? "" : " not");
    const std::string version(texts.primary, ::strnlen(texts.primary, sizeof texts.primary));
    std::printf("The RIL is version %s.\n", kelarc::logsink::printable(version).c_str());  // the modem's text
    return EXIT_SUCCESS;
}

}  // namespace

int main()
{
    kelarc::async::Timer timer;  // before the modem, so that it is destroyed after it
    KelArc modem(kelarc::logsink::toStderr());
    const auto soon = timer.within(std::chrono::seconds(20));
    try {
        request(modem, soon, &KelArc::open).get();
        const int result = showSettings(modem, soon);
        request(modem, soon, &KelArc::close).get();
        return result;
    } catch (const kelarc::async::TimedOut& late) {
        std::fprintf(stderr, "%s\n", late.what());
    } catch (const std::future_error&) {
        std::fprintf(stderr, "The library dropped a request.\n");
    }
    // Not return: the destructor would wait for a request that may be repeated for ever.
    std::_Exit(EXIT_FAILURE);
}
