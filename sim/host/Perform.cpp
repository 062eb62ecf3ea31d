#include "host/Perform.h"

#include <optional>

namespace arcsim {

namespace {

using modem::answer;
using modem::Reply;

/// Refuses a call whose arguments the modem cannot handle.
std::optional<Reply> refusal(bool complete, bool sensible = true)
{
    if (!complete)
        return answer(modem::kMissingParameter);
    if (!sensible)
        return answer(modem::kWrongParameter);
    return std::nullopt;
}

Reply checkSetting(modem::Modem& modem, const std::vector<Argument>& arguments, std::chrono::milliseconds now)
{
    const Argument& key = arguments[0];
    const Argument& value = arguments[1];
    const Argument& reply = arguments[2];
    const bool reads = !value.set;
    const bool complete = key.set && (!reads || reply.set);
    const bool sensible = reads ? arguments[3].number > 0 : !reply.set;
    if (const auto refused = refusal(complete, sensible))
        return *refused;
    return reads ? modem.readSetting(key.text) : modem.writeSetting(key.text, value.text, now);
}

Reply performOpen(modem::Modem& modem, const Request& request, std::chrono::milliseconds now)
{
    const std::vector<Argument>& given = request.arguments;
    switch (request.function) {
    case Function::Close:
        return modem.close(now);
    case Function::GetRilVersion: {
        const auto refused = refusal(given[0].set && given[1].set, given[2].number > 0);
        return refused ? *refused : modem.versions();
    }
    case Function::EnableLogging: {
        const auto refused = refusal(given[1].set);
        return refused ? *refused : modem.enableLogging();
    }
    case Function::AtcTunneling: {
        const auto refused = refusal(given[0].set);
        return refused ? *refused : modem.atCommand(given[0].text);
    }
    case Function::CheckModuleSetting:
        return checkSetting(modem, given, now);
    case Function::StartGNSSraw: {
        const auto refused = refusal(given[0].set, given[1].number > 0);
        return refused ? *refused : modem.startGnss(now);
    }
    case Function::StopGNSS:
    case Function::ForceStopGNSS:
        return modem.stopGnss(now);
    case Function::ResetAGNSS:
        return modem.resetAssistance(now);
    case Function::CurrentLSTA: {
        const auto refused = refusal(given[1].set);
        return refused ? *refused : modem.currentLsta(given[0].number, now);
    }
    case Function::EnableLSTA:
        return modem.enableLsta(given[0].number, given[1].isTrue(), given[2].number, now);
    case Function::SetNotificationMethod:
    case Function::Open:
    case Function::RegisterNotification:
    case Function::GetArcVersion:
        break;
    }
    return answer(modem::kGenericError);
}

}  // namespace

modem::Reply localVersion()
{
    return answer(modem::kSuccess, "ArcRilD 1.0 (simulated)");
}

modem::Reply perform(modem::Modem& modem, const Request& request, bool isOpen, std::chrono::milliseconds now)
{
    constexpr int kSingleThread = 1;  // the only supported method of delivering events
    switch (request.function) {
    case Function::SetNotificationMethod:
        return answer(request.arguments[0].number == kSingleThread ? modem::kSuccess : modem::kWrongParameter);
    case Function::Open:
        return modem.open();
    case Function::RegisterNotification:
        return answer(modem::kSuccess);
    case Function::GetArcVersion:
        return localVersion();
    default:
        return isOpen ? performOpen(modem, request, now) : answer(modem::kNotOpened);
    }
}

}  // namespace arcsim
