#include "kelarc/ModuleSetting.h"
#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <utility>

namespace kelarc {

/// Queues a task that reads: `body` calls readSetting().
void KelArc::addRead(std::string_view key, std::function<void(task::ExecutionReason)>&& body)
{
    addTask(kGetModuleSettingCall, {"Get ARC_CheckModuleSetting(\"", key, "\")"}, std::move(body));
}

/// Queues a task that writes: `body` calls writeSetting(). Quote marks around the key only: a value carries its own.
void KelArc::addWrite(std::string_view key, std::string_view value, std::function<void(task::ExecutionReason)>&& body)
{
    addTask(kSetModuleSettingCall, {"Set ARC_CheckModuleSetting(\"", key, "\", ", value, ")"}, std::move(body));
}

/// On the worker: all attempts of one read.
SettingReply KelArc::readSetting(const char* key)
{
    SettingReply reply;  // cleared once: what a failed attempt wrote stays
    reply.code = runCall(kGetModuleSettingCall, [&] {
                     return ARC_CheckModuleSetting(key, nullptr, reply.text, sizeof reply.text - 1, nullptr);
                 }).code;
    return reply;
}

/// On the worker: all attempts of one write.
SettingWritten KelArc::writeSetting(const char* key, const char* value)
{
    int settingIndicator = 2;  // preset once: what a failed attempt stored stays
    const CallResult result = runCall(
        kSetModuleSettingCall, [&] { return ARC_CheckModuleSetting(key, value, nullptr, 0, &settingIndicator); });
    return {result.code, settingIndicator == 1};
}

void KelArc::getModuleSetting(const std::string& key, std::function<void(int, std::string&&)>&& callback)
{
    addRead(key, [this, key = key, callback](task::ExecutionReason) {
        const SettingReply reply = readSetting(key.c_str());
        callback(reply.code, reply.text);
    });
}

void KelArc::setModuleSetting(const std::string& key, const std::string& value,
                              std::function<void(int, bool)>&& callback)
{
    addWrite(key, value, [this, key = key, value = value, callback](task::ExecutionReason) {
        const SettingWritten written = writeSetting(key.c_str(), value.c_str());
        callback(written.code, written.changed);
    });
}

}  // namespace kelarc
