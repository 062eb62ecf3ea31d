// This header must come first: it is included so that the library exports the functions of the C interface.
#pragma GCC visibility push(default)
#include "arc/ArcRilD.h"
#pragma GCC visibility pop

#include "record/Handlers.h"
#include "record/Recorder.h"

#include <cerrno>
#include <cstring>

using arcrecord::Fields;
using arcrecord::Function;
using arcrecord::Recorder;

namespace {

constexpr int kSuccess = 0;
constexpr int kNotSupported = 24;
constexpr int kNoConnection = 31;
constexpr int kDidNotFit = 33;

/// Passes a call on and records it. `arguments` and `outputs` write the arguments and outputs; `outputs` receives the
/// code. Nothing is locked while the real function runs, and the application sees that function's errno.
template <typename Pointer, typename Arguments, typename Outputs, typename... Values>
int pass(Function function, const Arguments& arguments, const Outputs& outputs, Values... values)
{
    Recorder& recorder = Recorder::instance();
    const int errnoBefore = errno;
    const Recorder::Begun begun = recorder.begin(function, arguments);
    const auto real = recorder.library().function<Pointer>(function);
    errno = errnoBefore;
    const int code = real == nullptr ? kNoConnection : real(values...);
    const int errnoAfter = errno;
    recorder.end(begun, code, [&](Fields& out) { outputs(out, code); });
    errno = errnoAfter;
    return code;
}

void nothing(Fields&) {}
void noOutput(Fields&, int) {}

/// A text that the library put into a buffer of `size` bytes, perhaps without a terminating zero.
void addText(Fields& out, const char* name, const char* buffer, int size, int code)
{
    if (buffer != nullptr && size > 0 && (code == kSuccess || code == kDidNotFit))
        out.text(name, buffer, strnlen(buffer, static_cast<std::size_t>(size)));
}

/// The modem's answer to an AT command lies in a buffer whose size only the application knows. It is read only when the
/// code says that there is an answer, since the library has then terminated it; the bound limits the damage if it has
/// not. After any other code the buffer may never have been written, and searching it for a terminator could leave the
/// application's memory.
void addAnswer(Fields& out, const char* buffer, int code)
{
    constexpr std::size_t kLongestAnswer = 4096;
    if (buffer != nullptr && (code == kSuccess || code == kNotSupported))
        out.text("answer", buffer, strnlen(buffer, kLongestAnswer));
}

void addRecord(Fields& out, const LstaInfo* record)
{
    LstaInfo copy{};  // the application's may be unaligned
    std::memcpy(&copy, static_cast<const void*>(record), sizeof copy);
    Fields fields(out.key("record"));
    fields.number("indicator", copy.indicator);
    fields.number("status", copy.status);
    fields.real("value", copy.value);
    fields.hex("bytes", &copy, sizeof copy);
}

}  // namespace

int ARC_SetNotificationMethod(int method)
{
    return pass<decltype(&ARC_SetNotificationMethod)>(
        Function::SetNotificationMethod, [&](Fields& in) { in.number("method", method); }, noOutput, method);
}

int ARC_Open(void)
{
    return pass<decltype(&ARC_Open)>(Function::Open, nothing, noOutput);
}

int ARC_Close(void)
{
    return pass<decltype(&ARC_Close)>(Function::Close, nothing, noOutput);
}

int ARC_RegisterNotification(ArcNotificationHandler handler)
{
    return pass<decltype(&ARC_RegisterNotification)>(
        Function::RegisterNotification, [&](Fields& in) { in.place("handler", handler != nullptr); }, noOutput,
        arcrecord::recordingHandlerFor(handler));
}

const char* ARC_GetArcVersion(void)
{
    // The one function without a code: its end is recorded with code 0, and the text shows whether there was one.
    Recorder& recorder = Recorder::instance();
    const int errnoBefore = errno;
    const Recorder::Begun begun = recorder.begin(Function::GetArcVersion, nothing);
    const auto real = recorder.library().function<decltype(&ARC_GetArcVersion)>(Function::GetArcVersion);
    errno = errnoBefore;
    const char* const version = real == nullptr ? nullptr : real();
    const int errnoAfter = errno;
    recorder.end(begun, kSuccess, [&](Fields& out) { out.text("version", version); });
    errno = errnoAfter;
    return version;
}

int ARC_GetRilVersion(char* primary, char* secondary, int size)
{
    return pass<decltype(&ARC_GetRilVersion)>(
        Function::GetRilVersion,
        [&](Fields& in) {
            in.place("primary", primary != nullptr);
            in.place("secondary", secondary != nullptr);
            in.number("size", size);
        },
        [&](Fields& out, int code) {
            addText(out, "primary", primary, size, code);
            addText(out, "secondary", secondary, size, code);
        },
        primary, secondary, size);
}

int ARC_EnableLogging(int zone, const char* text)
{
    return pass<decltype(&ARC_EnableLogging)>(
        Function::EnableLogging,
        [&](Fields& in) {
            in.number("zone", zone);
            in.text("text", text);
        },
        noOutput, zone, text);
}

int ARC_AtcTunneling(const char* command, char* answer)
{
    return pass<decltype(&ARC_AtcTunneling)>(
        Function::AtcTunneling,
        [&](Fields& in) {
            in.text("command", command);
            in.place("answer", answer != nullptr);
        },
        [&](Fields& out, int code) { addAnswer(out, answer, code); }, command, answer);
}

int ARC_CheckModuleSetting(const char* key, const char* value, char* reply, int replySize, int* writeIndicator)
{
    return pass<decltype(&ARC_CheckModuleSetting)>(
        Function::CheckModuleSetting,
        [&](Fields& in) {
            in.text("key", key);
            in.text("value", value);
            in.place("reply", reply != nullptr);
            in.number("replySize", replySize);
            in.place("writeIndicator", writeIndicator != nullptr);
        },
        [&](Fields& out, int code) {
            addText(out, "reply", reply, replySize, code);
            if (writeIndicator != nullptr && code == kSuccess)
                out.number("writeIndicator", *writeIndicator);
        },
        key, value, reply, replySize, writeIndicator);
}

int ARC_StartGNSSraw(char* text, int size)
{
    return pass<decltype(&ARC_StartGNSSraw)>(
        Function::StartGNSSraw,
        [&](Fields& in) {
            in.place("text", text != nullptr);
            in.number("size", size);
        },
        [&](Fields& out, int code) { addText(out, "text", text, size, code); }, text, size);
}

int ARC_StopGNSS(void)
{
    return pass<decltype(&ARC_StopGNSS)>(Function::StopGNSS, nothing, noOutput);
}

int ARC_ForceStopGNSS(void)
{
    return pass<decltype(&ARC_ForceStopGNSS)>(Function::ForceStopGNSS, nothing, noOutput);
}

int ARC_ResetAGNSS(void)
{
    return pass<decltype(&ARC_ResetAGNSS)>(Function::ResetAGNSS, nothing, noOutput);
}

int ARC_CurrentLSTA(int arcTechnologyId, LstaInfo* out)
{
    return pass<decltype(&ARC_CurrentLSTA)>(
        Function::CurrentLSTA,
        [&](Fields& in) {
            in.number("arcTechnologyId", arcTechnologyId);
            in.place("out", out != nullptr);
        },
        [&](Fields& fields, int code) {
            if (out != nullptr && code == kSuccess)
                addRecord(fields, out);
        },
        arcTechnologyId, out);
}

int ARC_EnableLSTA(int arcTechnologyId, bool enable, int parameter)
{
    return pass<decltype(&ARC_EnableLSTA)>(
        Function::EnableLSTA,
        [&](Fields& in) {
            in.number("arcTechnologyId", arcTechnologyId);
            in.flag("enable", enable);
            in.number("parameter", parameter);
        },
        noOutput, arcTechnologyId, enable, parameter);
}
