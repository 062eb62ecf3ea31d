#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"

#include "support/Words.h"

#include <limits>
#include <memory>

namespace kelarcctl {

void addPassThrough(CLI::App& app, Invocation& invocation)
{
    CLI::App& at = addCommand(app, "at", "Send an AT command; the modem's answer is not passed on", invocation);
    const auto command = std::make_shared<std::string>();
    at.add_option("COMMAND", *command, "As AT+CSQ")->option_text(" ")->required();
    at.callback([&invocation, command] {
        invocation.run = [command](Session& session, const Output& output) {
            const std::string what = "sending " + support::shortened(*command, support::kLongestShown);
            const auto [code, text] = session.ask<int, std::string>(what, [&](auto&& callback) {
                session.modem().ATcmd(*command, std::forward<decltype(callback)>(callback));
            });
            session.require(code, what);
            output.result({{"request", "sending " + *command}, {"done", true}}, "done");
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
    acceptWhole(*logging.add_option("ZONE", given->zone, "Number of the zone")->option_text(" ")->required(),
                std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
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
            output.result({{"request", "switching logging"}, {"done", true}}, "done");
            return kExitOk;
        };
    });
}

}  // namespace kelarcctl
