#include "kelarcctl/Commands.h"

#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kelarcctl {

namespace {

using kelarc::lsta::TECH;
using std::chrono::milliseconds;

constexpr std::array<std::pair<const char*, TECH>, 4> kLstaSystems{
    {{"gps", TECH::GPS}, {"glonass", TECH::GLONASS}, {"beidou", TECH::BEIDOU}, {"galileo", TECH::GALILEO}}};
constexpr const char* kTimes = "a time as 500ms, 30s or 2m, from 1ms to 24h";

std::string inQuotes(const std::string& text)
{
    return "'" + text + "'";
}

std::optional<milliseconds> parseTime(const std::string& text)
{
    constexpr std::array<std::pair<const char*, double>, 4> kUnits{
        {{"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}}};
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string unit(end, text.data() + text.size());
    for (const auto& [name, factor] : kUnits)
        if (error == std::errc() && unit == name && value * factor >= 1 && value * factor <= 24 * 3'600'000.0)
            return milliseconds(static_cast<long long>(value * factor));
    return std::nullopt;
}

CLI::Validator judged(std::function<std::string(std::string&)> judge)
{
    return {std::move(judge), ""};
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    return judged([words](std::string& given) {
        std::string accepted;
        for (const std::string& word : words) {
            if (word == given)
                return std::string();
            accepted += (accepted.empty() ? "" : ", ") + word;
        }
        return inQuotes(given) + " is not accepted; accepted: " + accepted;
    });
}

CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& help, Invocation& invocation)
{
    CLI::App& command = *parent.add_subcommand(name, help);
    command
        .add_option_function<std::string>(
            "--timeout", [&](const std::string& given) { invocation.timeout = parseTime(given).value(); },
            "Give up after this time (30s)")
        ->option_text("TIME")
        ->type_name("TIME")
        ->check(judged([](std::string& given) {
            return parseTime(given) ? std::string() : inQuotes(given) + " is not accepted; accepted: " + kTimes;
        }));
    command.add_flag("--json", invocation.json, "Results as JSON");
    command.add_option("--log", invocation.log, "Where the library's log goes: stderr, journal or a file")
        ->option_text("TARGET")
        ->type_name("TARGET")
        ->check(judged([](std::string& given) {
            return given.empty() ? std::string("'' is not accepted; accepted: stderr, journal or the path of a file")
                                 : std::string();
        }));
    const std::vector<std::string> levels{"info", "busy", "warning", "error"};
    command
        .add_option_function<std::string>(
            "--log-level",
            [&, levels](const std::string& given) {
                invocation.logLevel =
                    static_cast<int>(std::find(levels.begin(), levels.end(), given) - levels.begin()) + 2;
            },
            "Lowest level that is logged: info, busy, warning or error (busy)")
        ->option_text("LEVEL")
        ->type_name("LEVEL")
        ->check(oneOf(levels));
    return command;
}

std::string shown(const Setting& setting, const std::optional<std::string>& value)
{
    return value ? *value + (setting.unit.empty() ? "" : " " + setting.unit) : std::string("not understood");
}

Json jsonOf(const std::optional<std::string>& value)
{
    return value ? Json(*value) : Json(nullptr);
}

int readOne(Session& session, const Output& output, const Setting& setting)
{
    const Setting::Reading reading = setting.read(session);
    session.require(reading.code, "reading " + setting.command);
    output.result({{"setting", setting.command}, {"key", setting.key}, {"value", jsonOf(reading.value)}},
                  setting.command + ": " + shown(setting, reading.value));
    return kExitOk;
}

int writeOne(Session& session, const Output& output, const Setting& setting, const std::string& value)
{
    const Setting::Reading before = setting.read(session);
    session.require(before.code, "reading " + setting.command);
    session.require(setting.write(session, value), "writing " + setting.command);
    const Setting::Reading after = setting.read(session);
    session.require(after.code, "reading " + setting.command + " back");
    output.result({{"setting", setting.command},
                   {"key", setting.key},
                   {"value", jsonOf(after.value)},
                   {"before", jsonOf(before.value)}},
                  setting.command + ": " + shown(setting, after.value) + " (was " + shown(setting, before.value) + ")");
    if (after.value != value)
        throw Failure(kExitRefused, "the modem took " + setting.command + " " + value + " but reads back " +
                                        shown(setting, after.value));
    return kExitOk;
}

void addSetting(CLI::App& parent, const std::string& name, const Setting& setting, Invocation& invocation)
{
    CLI::App& command =
        addCommand(parent, name, setting.help + (setting.accepted.empty() ? "" : ": " + setting.accepted), invocation);
    const auto value = std::make_shared<std::string>();
    if (setting.write)
        command.add_option("VALUE", *value, "Without it the setting is read")
            ->option_text(" ")
            ->transform(judged([&setting](std::string& given) {
                const auto plain = setting.plain(given);
                if (!plain)
                    return inQuotes(given) + " is not accepted; accepted: " + setting.accepted;
                given = *plain;
                return std::string();
            }));
    command.callback([&invocation, &setting, value] {
        invocation.run = [&setting, value](Session& session, const Output& output) {
            return value->empty() ? readOne(session, output, setting) : writeOne(session, output, setting, *value);
        };
    });
}

void addSettings(CLI::App& app, Invocation& invocation)
{
    const std::string group = "system ";
    CLI::App* systems = nullptr;
    for (const Setting& setting : settings()) {
        const bool isSystem = setting.command.compare(0, group.size(), group) == 0;
        if (isSystem && systems == nullptr) {
            systems = app.add_subcommand("system", "Whether a satellite system is used");
            systems->require_subcommand(1);
        }
        addSetting(isSystem ? *systems : app, isSystem ? setting.command.substr(group.size()) : setting.command,
                   setting, invocation);
    }
}

std::string textOf(const char (&bytes)[64])
{
    return {bytes, ::strnlen(bytes, sizeof bytes)};
}

Json versions(Session& session, int& code)
{
    const auto [arcCode, arc] =
        session.ask<int, std::string>("reading the client library's version", [&](auto&& callback) {
            session.modem().getArcVersion(std::forward<decltype(callback)>(callback));
        });
    const auto [rilCode, ril] = session.ask<int, kelarc::RilVersion>("reading the RIL's version", [&](auto&& callback) {
        session.modem().getRilVersion(std::forward<decltype(callback)>(callback));
    });
    code = arcCode != 0 ? arcCode : rilCode;
    return {{"clientLibrary", arc}, {"ril", {textOf(ril.primary), textOf(ril.secondary)}}};
}

std::string versionsText(const Json& json)
{
    return "client library  " + json["clientLibrary"].get<std::string>() + "\nRIL             " +
           json["ril"][0].get<std::string>() + ", " + json["ril"][1].get<std::string>();
}

struct LstaAnswer
{
    int code;
    bool status;
    int value;
};

LstaAnswer lstaOf(Session& session, const char* name, TECH tech)
{
    const auto [code, status, value] =
        session.ask<int, bool, int>("reading the LSTA of " + std::string(name), [&](auto&& callback) {
            session.modem().getLstaGnss(tech, std::forward<decltype(callback)>(callback));
        });
    return {code, status, value};
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
        const LstaAnswer answer = lstaOf(session, name, tech);
        const std::string value =
            answer.code != 0 ? refused(answer.code)
                             : std::string(answer.status ? "on" : "off") + ", value " + std::to_string(answer.value);
        json["lsta"][name] = answer.code != 0 ? Json{{"code", answer.code}, {"refused", value}}
                                              : Json{{"status", answer.status}, {"value", answer.value}};
        text += row("lsta " + std::string(name), value);
    }
    output.result(json, text);
    return exitCode;
}

/// A request that answers nothing but a code.
template <typename Request>
void addPlain(CLI::App& parent, const std::string& name, const std::string& help, const std::string& doing,
              Invocation& invocation, Request request)
{
    addCommand(parent, name, help, invocation).callback([&invocation, doing, request] {
        invocation.run = [doing, request](Session& session, const Output& output) {
            const auto [code] = session.ask<int>(
                doing, [&](auto&& callback) { request(session.modem(), std::forward<decltype(callback)>(callback)); });
            session.require(code, doing);
            output.result({{"done", doing}}, "done");
            return kExitOk;
        };
    });
}

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

void addKeys(CLI::App& app, Invocation& invocation)
{
    struct Given
    {
        std::string key{};
        std::string value{};
    };
    const auto given = std::make_shared<Given>();
    const auto read = [](Session& session, const std::string& key) {
        const auto [code, text] = session.ask<int, std::string>("reading " + key, [&](auto&& callback) {
            session.modem().getModuleSetting(key, std::forward<decltype(callback)>(callback));
        });
        session.require(code, "reading " + key);
        return text;
    };
    CLI::App& get = addCommand(app, "get", "Read any setting of the modem by its key", invocation);
    get.add_option("KEY", given->key, "As Power/Cpu")->option_text(" ")->required();
    get.callback([&invocation, given, read] {
        invocation.run = [given, read](Session& session, const Output& output) {
            const std::string text = read(session, given->key);
            output.result({{"key", given->key}, {"value", text}}, text);
            return kExitOk;
        };
    });
    CLI::App& set = addCommand(app, "set", "Write any setting of the modem by its key", invocation);
    set.add_option("KEY", given->key, "As Power/Cpu")->option_text(" ")->required();
    set.add_option("VALUE", given->value, "As it is sent: most values need double quotes around them, '\"max\"'")
        ->option_text(" ")
        ->required();
    set.callback([&invocation, given, read] {
        invocation.run = [given, read](Session& session, const Output& output) {
            const auto [code, isWritten] = session.ask<int, bool>("writing " + given->key, [&](auto&& callback) {
                session.modem().setModuleSetting(given->key, given->value, std::forward<decltype(callback)>(callback));
            });
            session.require(code, "writing " + given->key);
            const std::string text = read(session, given->key);
            output.result({{"key", given->key}, {"value", text}, {"changed", isWritten}}, text);
            return kExitOk;
        };
    });
}

void addGnss(CLI::App& app, Invocation& invocation)
{
    CLI::App& gnss = *app.add_subcommand("gnss", "The receiver's engine");
    gnss.require_subcommand(1);
    CLI::App& start = addCommand(gnss, "start", "Start the raw output and say where it comes", invocation);
    const auto holds = std::make_shared<bool>(false);
    start.add_flag("--hold", *holds, "Keep the modem open until Ctrl-C; else output may end with this command");
    start.callback([&invocation, holds] {
        invocation.run = [holds](Session& session, const Output& output) {
            const auto [code, path] = session.ask<int, std::string>("starting the raw output", [&](auto&& callback) {
                session.modem().startRawGNSS(std::forward<decltype(callback)>(callback));
            });
            session.require(code, "starting the raw output");
            output.result({{"path", path}}, path);
            const Bell never;
            while (*holds)
                session.wait(never, Session::Clock::now() + std::chrono::hours(1), "the output runs");
            return kExitOk;
        };
    });
    using Callback = std::function<void(int)>;
    addPlain(gnss, "stop", "Stop the engine", "stopping the engine", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.stopGNSS(std::move(callback)); });
    addPlain(gnss, "force-stop", "Stop the engine by force", "stopping the engine by force", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.forceStopGNSS(std::move(callback)); });
    addPlain(gnss, "reset-assistance", "Reset the assistance data", "resetting the assistance data", invocation,
             [](kelarc::KelArc& modem, Callback&& callback) { modem.resetAGNSS(std::move(callback)); });
}

void addLsta(CLI::App& app, Invocation& invocation)
{
    CLI::App& lsta = *app.add_subcommand("lsta", "LSTA, a status that the modem keeps per satellite system");
    lsta.require_subcommand(1);
    CLI::App& get = addCommand(lsta, "get", "Ask for the LSTA of a system", invocation);
    const auto name = std::make_shared<std::string>();
    std::vector<std::string> names;
    for (const auto& [each, tech] : kLstaSystems)
        names.emplace_back(each);
    get.add_option("SYSTEM", *name, "gps, glonass, beidou or galileo")
        ->option_text(" ")
        ->required()
        ->check(oneOf(names));
    get.callback([&invocation, name] {
        invocation.run = [name](Session& session, const Output& output) {
            for (const auto& [each, tech] : kLstaSystems) {
                if (*name != each)
                    continue;
                const LstaAnswer answer = lstaOf(session, each, tech);
                session.require(answer.code, "telling the LSTA of " + *name);
                output.result({{"system", *name}, {"status", answer.status}, {"value", answer.value}},
                              *name + ": " + (answer.status ? "on" : "off") + ", value " +
                                  std::to_string(answer.value));
            }
            return kExitOk;
        };
    });
}

void addPassThrough(CLI::App& app, Invocation& invocation)
{
    CLI::App& at = addCommand(app, "at", "Send an AT command; the modem's answer is not passed on", invocation);
    const auto command = std::make_shared<std::string>();
    at.add_option("COMMAND", *command, "As AT+CSQ")->option_text(" ")->required();
    at.callback([&invocation, command] {
        invocation.run = [command](Session& session, const Output& output) {
            const auto [code, text] = session.ask<int, std::string>("sending " + *command, [&](auto&& callback) {
                session.modem().ATcmd(*command, std::forward<decltype(callback)>(callback));
            });
            session.require(code, "sending " + *command);
            output.result({{"command", *command}, {"answer", text}}, "done");
            return kExitOk;
        };
    });
    struct Given
    {
        int zone = 0;
        std::string text{};
    };
    CLI::App& logging = addCommand(app, "logging", "Switch the client library's own logging", invocation);
    const auto given = std::make_shared<Given>();
    logging.add_option("ZONE", given->zone, "Number of the zone")->option_text(" ")->required();
    logging.add_option("TEXT", given->text, "What the client library expects for the zone")
        ->option_text(" ")
        ->required();
    logging.callback([&invocation, given] {
        invocation.run = [given](Session& session, const Output& output) {
            const auto [code] = session.ask<int>("switching logging", [&](auto&& callback) {
                session.modem().enableLogging(kelarc::LOGGING_ZONE{given->zone}, given->text,
                                              std::forward<decltype(callback)>(callback));
            });
            session.require(code, "switching logging");
            output.result({{"zone", given->zone}, {"text", given->text}}, "done");
            return kExitOk;
        };
    });
}

}  // namespace

void addCommands(CLI::App& app, Invocation& invocation)
{
    addInformation(app, invocation);
    addSettings(app, invocation);
    addKeys(app, invocation);
    addGnss(app, invocation);
    addLsta(app, invocation);
    addPassThrough(app, invocation);
}

}  // namespace kelarcctl
