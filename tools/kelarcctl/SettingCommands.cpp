#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Queries.h"
#include "kelarcctl/Settings.h"

#include "support/Printable.h"

#include <memory>

namespace kelarcctl {

namespace {

Json settingJson(const Setting& setting, const std::optional<std::string>& value)
{
    return {{"setting", setting.command}, {"key", setting.key}, {"value", jsonOf(setting, value)}};
}

int readOne(Session& session, const Output& output, const Setting& setting)
{
    const Setting::Reading reading = setting.read(session);
    session.require(reading.code, "reading " + setting.command);
    output.result(settingJson(setting, reading.value), setting.command + ": " + shown(setting, reading.value));
    return kExitOk;
}

int writeOne(Session& session, const Output& output, const Setting& setting, const std::string& value)
{
    const Setting::Reading before = setting.read(session);
    session.require(before.code, "reading " + setting.command);
    session.require(setting.write(session, value), "writing " + setting.command);
    const Setting::Reading after = setting.read(session);
    session.require(after.code, "reading " + setting.command + " back");
    Json json = settingJson(setting, after.value);
    json["before"] = jsonOf(setting, before.value);
    const std::string text =
        setting.command + ": " + shown(setting, after.value) + " (was " + shown(setting, before.value) + ")";
    if (after.value != value) {
        output.text(text);
        Trouble trouble = readsBackOtherwise(setting, value, after.value);
        trouble.done = json;
        throw TroubleFailure(kExitRefused, trouble);
    }
    output.result(json, text);
    return kExitOk;
}

void addSetting(CLI::App& parent, const std::string& name, const Setting& setting, Invocation& invocation)
{
    CLI::App& command =
        addCommand(parent, name, setting.help + (setting.accepted.empty() ? "" : ": " + setting.accepted), invocation);
    const auto value = std::make_shared<std::string>();
    if (setting.isWritable()) {
        CLI::Option& option = *command.add_option("VALUE", *value, "Without it the setting is read")->option_text(" ");
        accept(option, setting.plain, setting.accepted, setting.words);
        invocation.words[&option] = setting.words;
    }
    command.callback([&invocation, &setting, value] {
        invocation.run = [&setting, value](Session& session, const Output& output) {
            return value->empty() ? readOne(session, output, setting) : writeOne(session, output, setting, *value);
        };
    });
}

}  // namespace

void addSettings(CLI::App& app, Invocation& invocation)
{
    const std::string group = "system ";
    CLI::App* systems = nullptr;
    for (const Setting& setting : settings()) {
        const bool isSystem = setting.command.compare(0, group.size(), group) == 0;
        if (isSystem && systems == nullptr)
            systems = &addGroup(app, "system", "Whether a satellite system is used");
        addSetting(isSystem ? *systems : app, isSystem ? setting.command.substr(group.size()) : setting.command,
                   setting, invocation);
    }
}

void addKeys(CLI::App& app, Invocation& invocation)
{
    struct Given
    {
        std::string key{};
        std::string value{};
    };
    const auto given = std::make_shared<Given>();
    std::vector<std::string> keys;
    for (const Setting& setting : settings())
        keys.push_back(setting.key);
    const auto addKey = [&](CLI::App& command) {
        CLI::Option& option = *command.add_option("KEY", given->key, "As Power/Cpu")->option_text(" ")->required();
        invocation.words[&option] = keys;
    };
    CLI::App& get = addCommand(app, "get", "Read any setting of the modem by its key", invocation);
    addKey(get);
    get.callback([&invocation, given] {
        invocation.run = [given](Session& session, const Output& output) {
            const std::string text = readKey(session, given->key);
            output.result({{"key", given->key}, {"reply", text}}, support::printable(text));
            return kExitOk;
        };
    });
    CLI::App& set = addCommand(app, "set", "Write any setting of the modem by its key", invocation);
    addKey(set);
    set.add_option("VALUE", given->value, "As it is sent: most values need double quotes around them, '\"max\"'")
        ->option_text(" ")
        ->required();
    set.callback([&invocation, given] {
        invocation.run = [given](Session& session, const Output& output) {
            const bool isChanged = writeKey(session, given->key, given->value);
            const std::string text = readKey(session, given->key);
            output.result({{"key", given->key}, {"reply", text}, {"changed", isChanged}}, support::printable(text));
            return kExitOk;
        };
    });
}

}  // namespace kelarcctl
