#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <utility>

namespace kelarc {

void KelArc::getModuleSetting(const std::string& key, std::function<void(int, std::string&&)>&& callback)
{
    const std::string call = "Get ARC_CheckModuleSetting(\"" + key + "\")";
    addTask(kGetModuleSettingCall, call, [this, call, key, callback](task::ExecutionReason) {
        char reply[256] = {};  // cleared once: what a failed attempt wrote stays
        const CallResult result = runCall(kGetModuleSettingCall, call, [&] {
            return ARC_CheckModuleSetting(key.c_str(), nullptr, reply, sizeof reply - 1, nullptr);
        });
        callback(result.code, std::string(reply));
    });
}

void KelArc::setModuleSetting(const std::string& key, const std::string& value,
                              std::function<void(int, bool)>&& callback)
{
    // Quote marks around the key only: a value carries its own.
    const std::string call = "Set ARC_CheckModuleSetting(\"" + key + "\", " + value + ")";
    addTask(kSetModuleSettingCall, call, [this, call, key, value, callback](task::ExecutionReason) {
        int settingIndicator = 2;  // preset once: what a failed attempt stored stays
        const CallResult result = runCall(kSetModuleSettingCall, call, [&] {
            return ARC_CheckModuleSetting(key.c_str(), value.c_str(), nullptr, 0, &settingIndicator);
        });
        callback(result.code, settingIndicator == 1);
    });
}

}  // namespace kelarc
