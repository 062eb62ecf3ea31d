#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Queries.h"
#include "kelarcctl/Stream.h"

#include "support/Words.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <iterator>
#include <limits>
#include <memory>

namespace kelarcctl {

namespace {

using kelarc::lsta::System;
using Systems = std::vector<System>;
using Names = std::shared_ptr<std::vector<std::string>>;

Names addSystems(CLI::App& command, Invocation& invocation)
{
    auto names = std::make_shared<std::vector<std::string>>();
    std::vector<std::string> accepted(kLstaSystemCount);
    std::transform(std::begin(kLstaSystems), std::end(kLstaSystems), accepted.begin(), wordOf);
    accepted.emplace_back("all");
    CLI::Option& option =
        *command.add_option("SYSTEM", *names, support::joined(accepted))->option_text("...")->required();
    accept(option, accepted, invocation);
    return names;
}

/// Each system once and in the order of the table, whatever was typed.
Systems systemsOf(const std::vector<std::string>& names)
{
    Systems systems;
    const auto isNamed = [&](const std::string& system) {
        return std::any_of(names.begin(), names.end(),
                           [&](const std::string& each) { return each == system || each == "all"; });
    };
    std::copy_if(std::begin(kLstaSystems), std::end(kLstaSystems), std::back_inserter(systems),
                 [&](const System& system) { return isNamed(wordOf(system)); });
    return systems;
}

std::string numberText(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

int get(Session& session, const Output& output, const Systems& systems)
{
    for (const System& system : systems) {
        const std::string name = wordOf(system);
        const LstaAnswer answer = readLsta(session, system);
        session.require(answer.code, "reading the LSTA of " + name);
        Json json{{"system", name}};
        json.update(lstaJson(answer));
        output.result(json, name + ": " + lstaText(answer.status, answer.value));
    }
    return kExitOk;
}

/// Only a failure is answered. So the next request in the queue shows that this one succeeded.
void switchReports(Session& session, const System& system, bool on, int period, const std::shared_ptr<Stream>& stream)
{
    const std::string name = wordOf(system);
    const std::string what = (on ? "enabling" : "disabling") + std::string(" the LSTA reports of ") + name;
    const auto failure = std::make_shared<std::atomic<int>>(0);
    session.modem().setLstaGnssStatus(
        system.tech, on, period,
        [stream, name](kelarc::lsta::TYPE, int status, double value) {
            const std::string utc = utcText();
            stream->put({{"utc", utc}, {"system", name}, {"on", status != 0}, {"value", value}, {"status", status}},
                        utc + "  " + name + ": status " + std::to_string(status) + ", value " + numberText(value));
        },
        [failure](int code) { failure->store(code); });
    session.settle(what);
    session.require(failure->load(), what);
}

/// Reports come only while a handler for the modem's other notifications is set, too.
void listen(Session& session)
{
    session.modem().setNotificationCB([](kelarc::NOTIFY_ID, void*, int) {});
    session.settle("registering for notifications");
}

int watch(Session& session, const Output& output, const Systems& systems, int period, const StreamEnd& end)
{
    const auto stream = std::make_shared<Stream>();
    listen(session);
    for (const System& system : systems)
        switchReports(session, system, true, period, stream);
    return stream->run(session, output, end, "watching LSTA reports");
}

int switchAll(Session& session, const Output& output, const Systems& systems, bool on, int period)
{
    const auto nobody = std::make_shared<Stream>();
    for (const System& system : systems) {
        switchReports(session, system, on, period, nobody);
        const std::string name = wordOf(system);
        output.result({{"system", name}, {"reports", on}}, name + ": reports " + (on ? "enabled" : "disabled"));
    }
    return kExitOk;
}

std::shared_ptr<int> addPeriod(CLI::App& command)
{
    auto period = std::make_shared<int>(0);
    acceptWhole(*command.add_option("--parameter", *period, "Handed to the modem as it is (0)")->option_text("N"),
                std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return period;
}

}  // namespace

void addLsta(CLI::App& app, Invocation& invocation)
{
    CLI::App& lsta = addGroup(
        app, "lsta", "LSTA, a status that the modem keeps per satellite system; lsta --watch shows all reports");

    CLI::App& getCommand = addCommand(lsta, "get", "Ask for the LSTA of systems", invocation);
    const Names asked = addSystems(getCommand, invocation);
    getCommand.callback([&invocation, asked] {
        invocation.run = [asked](Session& session, const Output& output) {
            return get(session, output, systemsOf(*asked));
        };
    });

    CLI::App& enable =
        addCommand(lsta, "enable", "Enable the reports of systems; they end with the last open client", invocation);
    const Names enabled = addSystems(enable, invocation);
    const auto period = addPeriod(enable);
    const auto watches = std::make_shared<bool>(false);
    CLI::Option& watchFlag = *enable.add_flag("--watch", *watches, "Show the reports until Ctrl-C");
    const auto enableEnd = addStreamEnd(enable, &watchFlag);
    enable.callback([&invocation, enabled, period, watches, enableEnd] {
        invocation.run = [=](Session& session, const Output& output) {
            return *watches ? watch(session, output, systemsOf(*enabled), *period, *enableEnd)
                            : switchAll(session, output, systemsOf(*enabled), true, *period);
        };
    });

    CLI::App& disable = addCommand(lsta, "disable", "Disable the reports of systems", invocation);
    const Names disabled = addSystems(disable, invocation);
    const auto unused = addPeriod(disable);
    disable.callback([&invocation, disabled, unused] {
        invocation.run = [=](Session& session, const Output& output) {
            return switchAll(session, output, systemsOf(*disabled), false, *unused);
        };
    });
}

}  // namespace kelarcctl
