// Before anything else includes it: the functions of the C interface are what the library exports.
#pragma GCC visibility push(default)
#include "arc/ArcRilD.h"
#pragma GCC visibility pop

#include "client/Simulator.h"

#include <algorithm>
#include <cstring>

using arcsim::Function;
using arcsim::Simulator;
using arcsim::modem::answer;
using arcsim::modem::Modem;
using arcsim::modem::Reply;
using std::chrono::milliseconds;

namespace {

std::string argument(const char* text)
{
    return text == nullptr ? "null" : text;
}
std::string argument(int number)
{
    return std::to_string(number);
}
std::string argument(bool flag)
{
    return flag ? "1" : "0";
}
std::string output(const void* buffer)
{
    return buffer == nullptr ? "null" : "set";
}

/// Refuses a call whose arguments are not what the modem could answer to; a closed connection comes first.
std::optional<Reply> refusal(const Modem& modem, bool complete, bool sensible = true)
{
    if (!modem.isOpen())
        return answer(arcsim::modem::kNotOpened);
    if (!complete)
        return answer(arcsim::modem::kMissingParameter);
    if (!sensible)
        return answer(arcsim::modem::kWrongParameter);
    return std::nullopt;
}

/// Copies what fits; a text that fills the buffer has no terminating zero. False when it did not fit.
bool copyText(const std::optional<std::string>& text, char* buffer, int size, bool terminated)
{
    if (!text || buffer == nullptr || size <= 0)
        return true;
    const auto room = static_cast<std::size_t>(size);
    const std::size_t length = std::min(text->size(), room);
    std::memcpy(buffer, text->data(), length);
    if (terminated && length < room)
        buffer[length] = '\0';
    return text->size() <= room;
}

int codeOf(const Simulator::Outcome& outcome, bool everythingFits)
{
    const int code = outcome.answer.code;
    return outcome.scripted || everythingFits || code != arcsim::modem::kSuccess ? code : arcsim::modem::kDidNotFit;
}

}  // namespace

int ARC_SetNotificationMethod(int method)
{
    const auto outcome =
        Simulator::instance().call(Function::SetNotificationMethod, {argument(method)}, [&](Modem&, milliseconds) {
            const bool known = method == ARC_NOTIFY_METHOD_SINGLETHREAD;
            return answer(known ? arcsim::modem::kSuccess : arcsim::modem::kWrongParameter);
        });
    return outcome.answer.code;
}

int ARC_Open(void)
{
    return Simulator::instance()
        .call(Function::Open, {}, [](Modem& modem, milliseconds) { return modem.open(); })
        .answer.code;
}

int ARC_Close(void)
{
    return Simulator::instance()
        .call(Function::Close, {}, [](Modem& modem, milliseconds now) { return modem.close(now); })
        .answer.code;
}

int ARC_RegisterNotification(ArcNotificationHandler handler)
{
    Simulator& simulator = Simulator::instance();
    const std::string shown = handler == nullptr ? "null" : "set";
    const int code =
        simulator.call(Function::RegisterNotification, {shown}, [](Modem&, milliseconds) { return Reply{}; })
            .answer.code;
    if (code == arcsim::modem::kSuccess)
        simulator.notifier().setHandler(handler);
    return code;
}

const char* ARC_GetArcVersion(void)
{
    Simulator& simulator = Simulator::instance();
    const auto outcome = simulator.call(Function::GetArcVersion, {}, [](Modem&, milliseconds) { return Reply{}; });
    if (outcome.answer.code != arcsim::modem::kSuccess)
        return nullptr;
    return simulator.keepText(outcome.answer.text.value_or("ArcRilD 1.0 (simulated)"));
}

int ARC_GetRilVersion(char* primary, char* secondary, int size)
{
    const auto outcome = Simulator::instance().call(
        Function::GetRilVersion, {output(primary), output(secondary), argument(size)}, [&](Modem& modem, milliseconds) {
            const auto refused = refusal(modem, primary != nullptr && secondary != nullptr, size > 0);
            return refused ? *refused : modem.versions();
        });
    const auto& answer = outcome.answer;
    const bool firstFits = copyText(answer.text, primary, size, answer.terminated);
    const bool secondFits = copyText(answer.secondText, secondary, size, answer.terminated);
    return codeOf(outcome, firstFits && secondFits);
}

int ARC_EnableLogging(int zone, const char* text)
{
    return Simulator::instance()
        .call(Function::EnableLogging, {argument(zone), argument(text)},
              [&](Modem& modem, milliseconds) {
                  const auto refused = refusal(modem, text != nullptr);
                  return refused ? *refused : modem.enableLogging();
              })
        .answer.code;
}

int ARC_AtcTunneling(const char* command, char* answer)
{
    const auto outcome = Simulator::instance().call(Function::AtcTunneling, {argument(command), output(answer)},
                                                    [&](Modem& modem, milliseconds) {
                                                        const auto refused = refusal(modem, command != nullptr);
                                                        return refused ? *refused : modem.atCommand(command);
                                                    });
    if (outcome.answer.text) {  // the caller gives no size: there is room for every answer
        const int room = static_cast<int>(outcome.answer.text->size()) + (outcome.answer.terminated ? 1 : 0);
        copyText(outcome.answer.text, answer, room, outcome.answer.terminated);
    }
    return outcome.answer.code;
}

int ARC_CheckModuleSetting(const char* key, const char* value, char* reply, int replySize, int* writeIndicator)
{
    const bool reads = value == nullptr;
    const auto outcome = Simulator::instance().call(
        Function::CheckModuleSetting,
        {argument(key), argument(value), output(reply), argument(replySize), output(writeIndicator)},
        [&](Modem& modem, milliseconds now) {
            const bool complete = key != nullptr && (!reads || reply != nullptr);
            const bool sensible = reads ? replySize > 0 : reply == nullptr;
            if (const auto refused = refusal(modem, complete, sensible))
                return *refused;
            return reads ? modem.readSetting(key) : modem.writeSetting(key, value, now);
        });
    const auto& answer = outcome.answer;
    if (answer.indicator && writeIndicator != nullptr)
        *writeIndicator = *answer.indicator;
    return codeOf(outcome, copyText(answer.text, reply, replySize, answer.terminated));
}

int ARC_StartGNSSraw(char* text, int size)
{
    const auto outcome = Simulator::instance().call(Function::StartGNSSraw, {output(text), argument(size)},
                                                    [&](Modem& modem, milliseconds now) {
                                                        const auto refused = refusal(modem, text != nullptr, size > 0);
                                                        return refused ? *refused : modem.startGnss(now);
                                                    });
    return codeOf(outcome, copyText(outcome.answer.text, text, size, outcome.answer.terminated));
}

int ARC_StopGNSS(void)
{
    return Simulator::instance()
        .call(Function::StopGNSS, {}, [](Modem& modem, milliseconds now) { return modem.stopGnss(now); })
        .answer.code;
}

int ARC_ForceStopGNSS(void)
{
    return Simulator::instance()
        .call(Function::ForceStopGNSS, {}, [](Modem& modem, milliseconds now) { return modem.stopGnss(now); })
        .answer.code;
}

int ARC_ResetAGNSS(void)
{
    return Simulator::instance()
        .call(Function::ResetAGNSS, {}, [](Modem& modem, milliseconds now) { return modem.resetAssistance(now); })
        .answer.code;
}

int ARC_CurrentLSTA(int arcTechnologyId, LstaInfo* out)
{
    const auto outcome = Simulator::instance().call(
        Function::CurrentLSTA, {argument(arcTechnologyId), output(out)}, [&](Modem& modem, milliseconds now) {
            const auto refused = refusal(modem, out != nullptr);
            return refused ? *refused : modem.currentLsta(arcTechnologyId, now);
        });
    if (outcome.answer.record && out != nullptr)
        *out = *outcome.answer.record;
    return outcome.answer.code;
}

int ARC_EnableLSTA(int arcTechnologyId, bool enable, int parameter)
{
    return Simulator::instance()
        .call(Function::EnableLSTA, {argument(arcTechnologyId), argument(enable), argument(parameter)},
              [&](Modem& modem, milliseconds now) { return modem.enableLsta(arcTechnologyId, enable, parameter, now); })
        .answer.code;
}
