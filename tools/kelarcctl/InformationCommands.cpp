#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Queries.h"

namespace kelarcctl {

namespace {

Json versions(Session& session, int& code)
{
    const ArcVersion arc = readArcVersion(session);
    const RilVersions ril = readRilVersion(session);
    code = arc.code != 0 ? arc.code : ril.code;
    return {{"clientLibrary", arc.text}, {"ril", {ril.primary, ril.secondary}}};
}

std::string versionsText(const Json& json)
{
    return "client library  " + json["clientLibrary"].get<std::string>() + "\nRIL             " +
           json["ril"][0].get<std::string>() + ", " + json["ril"][1].get<std::string>();
}

std::string row(const std::string& name, const std::string& value)
{
    constexpr std::size_t kWidth = 16;
    return "\n" + name + std::string(name.size() < kWidth ? kWidth - name.size() : 1, ' ') + value;
}

int status(Session& session, const Output& output)
{
    int exitCode = kExitOk;
    const auto refused = [&](int code) {
        exitCode = kExitRefused;
        return "refused: " + session.refusalText(code);
    };
    int code = 0;
    Json json = {{"versions", versions(session, code)}};
    std::string text = versionsText(json["versions"]);
    if (code != 0)
        text += row("", refused(code));
    for (const Setting& setting : settings()) {
        const Setting::Reading reading = setting.read(session);
        const std::string value = reading.code == 0 ? shown(setting, reading.value) : refused(reading.code);
        json["settings"][setting.command] =
            reading.code == 0 ? jsonOf(reading.value) : Json{{"code", reading.code}, {"refused", value}};
        text += row(setting.command, value);
    }
    for (const auto& [name, tech] : kLstaSystems) {
        const LstaAnswer answer = readLsta(session, name, tech);
        const std::string value = answer.code != 0 ? refused(answer.code) : lstaText(answer.status, answer.value);
        json["lsta"][name] = answer.code != 0 ? Json{{"code", answer.code}, {"refused", value}}
                                              : Json{{"status", answer.status}, {"value", answer.value}};
        text += row("lsta " + std::string(name), value);
    }
    output.result(json, text);
    return exitCode;
}

}  // namespace

void addInformation(CLI::App& app, Invocation& invocation)
{
    addCommand(app, "status", "Everything that can be read: versions, settings, LSTA", invocation)
        .callback([&invocation] { invocation.run = status; });
    addCommand(app, "versions", "Versions of the client library and of the RIL", invocation).callback([&invocation] {
        invocation.run = [](Session& session, const Output& output) {
            int code = 0;
            const Json json = versions(session, code);
            session.require(code, "telling its versions");
            output.result(json, versionsText(json));
            return kExitOk;
        };
    });
}

}  // namespace kelarcctl
