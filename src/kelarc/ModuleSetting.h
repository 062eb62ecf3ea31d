#pragma once

#include "arc/ArcRilD.h"
#include "kelarc/AddTask.h"

namespace kelarc {

// Keys and values are texts that end: constants where the setting is known, otherwise strings of the caller's.

/// Queues the reading of a setting; answers as getModuleSetting() does.
template <typename Key, typename Answer>
void KelArc::readSetting(Key key, Answer answer)
{
    std::string call = joined({"Get ARC_CheckModuleSetting(\"", key, "\")"});
    addTask(kGetModuleSettingCall, std::move(call),
            [this, key = std::move(key), answer = std::move(answer)](const std::string& callText) {
                char reply[256] = {};  // cleared once: what a failed attempt wrote stays
                const CallResult result = runCall(kGetModuleSettingCall, callText, [&] {
                    return ARC_CheckModuleSetting(std::string_view(key).data(), nullptr, reply, sizeof reply - 1,
                                                  nullptr);
                });
                answer(result.code, std::string(reply));
            });
}

/// Queues the writing of a setting; answers as setModuleSetting() does.
template <typename Key, typename Value, typename Answer>
void KelArc::writeSetting(Key key, Value value, Answer answer)
{
    // Quote marks around the key only: a value carries its own.
    std::string call = joined({"Set ARC_CheckModuleSetting(\"", key, "\", ", value, ")"});
    addTask(
        kSetModuleSettingCall, std::move(call),
        [this, key = std::move(key), value = std::move(value), answer = std::move(answer)](const std::string& text) {
            int settingIndicator = 2;  // preset once: what a failed attempt stored stays
            const CallResult result = runCall(kSetModuleSettingCall, text, [&] {
                return ARC_CheckModuleSetting(std::string_view(key).data(), std::string_view(value).data(), nullptr, 0,
                                              &settingIndicator);
            });
            answer(result.code, settingIndicator == 1);
        });
}

}  // namespace kelarc
