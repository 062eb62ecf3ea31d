#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Session.h"

#include "support/CommandTexts.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// The options that all commands share, and the action of the given command.
struct Invocation : support::TypedWords
{
    std::chrono::milliseconds timeout{30000};
    bool json = false;
    std::string log = "stderr";
    int logLevel = 3;
    /// The command starts with an open modem; otherwise it opens the modem itself, or needs none.
    bool isOpened = true;
    /// Returns the exit code; throws Failure.
    std::function<int(Session&, const Output&)> run{};
    /// Replaces run() for a command that creates the modem object itself.
    std::function<int()> program{};
};

/// The help's heading for the options that every command has.
constexpr const char* kEveryCommand = "Options of every command";

/// A command with the options that every command has.
CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& help, Invocation& invocation);
/// A command that is only the first word of other commands.
CLI::App& addGroup(CLI::App& parent, const std::string& name, const std::string& help);

/// Restricts an argument or option to these words, in any case, and corrects the given spelling.
void accept(CLI::Option& option, const std::vector<std::string>& words, Invocation& invocation);
/// Accepts values for which `plain` returns a plain spelling.
void accept(CLI::Option& option, std::function<std::optional<std::string>(const std::string&)> plain,
            const std::string& accepted, const std::vector<std::string>& words = {});
/// Accepts a whole number in decimal digits.
void acceptWhole(CLI::Option& option, long long lowest, long long highest);
/// An option that takes a time.
CLI::Option& addTime(CLI::App& command, const std::string& name, const std::string& help,
                     std::function<void(std::chrono::milliseconds)> take);

/// "'given' is not accepted; accepted: a, b", with a suggestion of the probably intended word.
std::string notAccepted(const std::string& given, const std::vector<std::string>& words);

/// Finds the command that these words name and lets it fill `invocation`. Returns an exit code if nothing is left to
/// do: help was printed, or the words are wrong. Errors go to stderr, and with `isJson` or --json among the words also
/// to stdout.
std::optional<int> parse(CLI::App& app, std::vector<std::string> words, bool isJson = false);

}  // namespace kelarcctl
