#include "daemon/MixedCalls.h"

#include <functional>

namespace daemon_test {

namespace {

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

struct Call
{
    std::string name;
    std::function<std::string()> make;
    std::string right;
};

std::string atAnswer(const char* command)
{
    char answer[256] = {};
    const int code = ARC_AtcTunneling(command, answer);
    return std::to_string(code) + ' ' + answer;
}

std::string settingOf(const std::string& key)
{
    char reply[256] = {};
    const int code = ARC_CheckModuleSetting(key.c_str(), nullptr, reply, sizeof reply - 1, nullptr);
    return std::to_string(code) + ' ' + reply;
}

std::string lstaOf(int technologyId)
{
    LstaInfo record{};
    const int code = ARC_CurrentLSTA(technologyId, &record);
    return std::to_string(code) + ' ' + std::to_string(record.indicator);
}

std::string rilVersions(int size)
{
    char primary[256] = {};
    char secondary[256] = {};
    const int code = ARC_GetRilVersion(primary, secondary, size);
    return std::to_string(code) + ' ' + primary + ' ' + secondary;
}

const std::vector<Call>& callsForAll()
{
    static const std::vector<Call> calls{
        {"ARC_GetArcVersion", [] { return std::string(ARC_GetArcVersion()); }, "ArcRilD 1.0 (simulated)"},
        {"ARC_GetRilVersion", [] { return rilVersions(255); }, "0 RIL 1.0 (simulated) Modem 1.0 (simulated)"},
        {"ARC_GetRilVersion cut", [] { return rilVersions(3); }, "33 RIL Mod"},
        {"AT+CGMI", [] { return atAnswer("AT+CGMI"); }, "0 KelArc\r\nOK"},
        {"AT+CSQ", [] { return atAnswer("at+csq"); }, "0 +CSQ: 21,99\r\nOK"},
        {"AT+NONE", [] { return atAnswer("AT+NONE"); }, "24 ERROR"},
        {"Raw/Version", [] { return settingOf("Raw/Version"); }, "0 \"1.0 (simulated)\""},
        {"No/Key", [] { return settingOf("No/Key"); }, "16 "},
        {"LSTA of GPS", [] { return lstaOf(10); }, "0 1000"},
        {"LSTA of Galileo", [] { return lstaOf(13); }, "0 1003"},
        {"LSTA of none", [] { return lstaOf(14); }, "13 0"},
        {"ARC_EnableLogging", [] { return std::to_string(ARC_EnableLogging(3, "mixed")); }, "0"},
        {"ARC_EnableLogging without text", [] { return std::to_string(ARC_EnableLogging(3, nullptr)); }, "14"},
        {"ARC_SetNotificationMethod", [] { return std::to_string(ARC_SetNotificationMethod(1)); }, "0"},
        {"ARC_Open again", [] { return std::to_string(ARC_Open()); }, "0"},
        {"ARC_StopGNSS", [] { return std::to_string(ARC_StopGNSS()); }, "0"},
    };
    return calls;
}

/// Changes the setting, writes the same once more, and reads it.
std::string changeTo(const std::string& key, const std::string& value)
{
    std::string text;
    for (int i = 0; i < 2; ++i) {
        int indicator = -1;
        const int code = ARC_CheckModuleSetting(key.c_str(), quoted(value).c_str(), nullptr, 0, &indicator);
        text += std::to_string(code) + ' ' + std::to_string(indicator) + ", ";
    }
    return text + settingOf(key);
}

}  // namespace

std::string mixedCalls(const Words& words)
{
    std::vector<Call> calls = callsForAll();
    if (words.size() == 4)
        for (const std::size_t value : {2, 3})
            calls.push_back({words[1] + " to " + words[value], [&, value] { return changeTo(words[1], words[value]); },
                             "0 1, 0 0, 0 " + quoted(words[value])});
    const std::size_t count = std::stoul(words.at(0));
    for (std::size_t i = 0; i < count; ++i) {
        const Call& call = calls[i % calls.size()];
        const std::string answer = call.make();
        if (answer != call.right)
            return "1 call " + std::to_string(i) + ", " + call.name + ": '" + answer + "' and not '" + call.right + "'";
    }
    return "0 right";
}

}  // namespace daemon_test
