// This header must come first: it is included so that the library exports the functions of the C interface.
#pragma GCC visibility push(default)
#include "arc/ArcRilD.h"
#pragma GCC visibility pop

#include "client/Simulator.h"
#include "modem/ResultCode.h"

#include <algorithm>
#include <cstring>

using arcsim::Argument;
using arcsim::Function;
using arcsim::Simulator;

namespace {

Simulator::Outcome call(Function function, std::vector<Argument> arguments)
{
    return Simulator::instance().call({function, std::move(arguments)});
}

Argument pointer(const void* pointer)
{
    return Argument::pointer(pointer != nullptr);
}

/// Copies as much as fits; a text that fills the buffer has no terminating zero. False when the text did not fit.
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
    return call(Function::SetNotificationMethod, {Argument::of(method)}).answer.code;
}

int ARC_Open(void)
{
    return call(Function::Open, {}).answer.code;
}

int ARC_Close(void)
{
    return call(Function::Close, {}).answer.code;
}

int ARC_RegisterNotification(ArcNotificationHandler handler)
{
    const int code = call(Function::RegisterNotification, {Argument::pointer(handler != nullptr)}).answer.code;
    if (code == arcsim::modem::kSuccess)
        Simulator::instance().notifier().setHandler(handler);
    Simulator::instance().channel().handlerIsSet();
    return code;
}

const char* ARC_GetArcVersion(void)
{
    const auto outcome = call(Function::GetArcVersion, {});
    if (outcome.answer.code != arcsim::modem::kSuccess)
        return nullptr;
    return Simulator::instance().keepText(outcome.answer.text.value_or("ArcRilD 1.0 (simulated)"));
}

int ARC_GetRilVersion(char* primary, char* secondary, int size)
{
    const auto outcome = call(Function::GetRilVersion, {pointer(primary), pointer(secondary), Argument::of(size)});
    const auto& answer = outcome.answer;
    const bool firstFits = copyText(answer.text, primary, size, answer.terminated);
    const bool secondFits = copyText(answer.secondText, secondary, size, answer.terminated);
    return codeOf(outcome, firstFits && secondFits);
}

int ARC_EnableLogging(int zone, const char* text)
{
    return call(Function::EnableLogging, {Argument::of(zone), Argument::of(text)}).answer.code;
}

int ARC_AtcTunneling(const char* command, char* answer)
{
    const auto outcome = call(Function::AtcTunneling, {Argument::of(command), pointer(answer)});
    if (outcome.answer.text) {  // the caller gives no size, so its buffer must hold any answer
        const int room = static_cast<int>(outcome.answer.text->size()) + (outcome.answer.terminated ? 1 : 0);
        copyText(outcome.answer.text, answer, room, outcome.answer.terminated);
    }
    return outcome.answer.code;
}

int ARC_CheckModuleSetting(const char* key, const char* value, char* reply, int replySize, int* writeIndicator)
{
    const auto outcome = call(Function::CheckModuleSetting, {Argument::of(key), Argument::of(value), pointer(reply),
                                                             Argument::of(replySize), pointer(writeIndicator)});
    const auto& answer = outcome.answer;
    if (answer.indicator && writeIndicator != nullptr)
        *writeIndicator = *answer.indicator;
    return codeOf(outcome, copyText(answer.text, reply, replySize, answer.terminated));
}

int ARC_StartGNSSraw(char* text, int size)
{
    const auto outcome = call(Function::StartGNSSraw, {pointer(text), Argument::of(size)});
    return codeOf(outcome, copyText(outcome.answer.text, text, size, outcome.answer.terminated));
}

int ARC_StopGNSS(void)
{
    return call(Function::StopGNSS, {}).answer.code;
}

int ARC_ForceStopGNSS(void)
{
    return call(Function::ForceStopGNSS, {}).answer.code;
}

int ARC_ResetAGNSS(void)
{
    return call(Function::ResetAGNSS, {}).answer.code;
}

int ARC_CurrentLSTA(int arcTechnologyId, LstaInfo* out)
{
    const auto outcome = call(Function::CurrentLSTA, {Argument::of(arcTechnologyId), pointer(out)});
    if (outcome.answer.record && out != nullptr)
        *out = *outcome.answer.record;
    return outcome.answer.code;
}

int ARC_EnableLSTA(int arcTechnologyId, bool enable, int parameter)
{
    return call(Function::EnableLSTA, {Argument::of(arcTechnologyId), Argument::of(enable), Argument::of(parameter)})
        .answer.code;
}
