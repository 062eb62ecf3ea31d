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

/// What every command knows, and what the given one does.
struct Invocation : support::TypedWords
{
    std::chrono::milliseconds timeout{30000};
    bool json = false;
    std::string log = "stderr";
    int logLevel = 3;
    /// The command begins on an opened modem; else it opens the modem by itself, or needs none.
    bool isOpened = true;
    /// Throws Failure; what is returned is the exit code.
    std::function<int(Session&, const Output&)> run{};
    /// Instead of run(), for what takes the modem to itself.
    std::function<int()> program{};
};

/// The group of the options that every command has.
constexpr const char* kEveryCommand = "Options of every command";

/// A command with the options that every command has.
CLI::App& addCommand(CLI::App& parent, const std::string& name, const std::string& help, Invocation& invocation);
/// A command that is only the first word of others.
CLI::App& addGroup(CLI::App& parent, const std::string& name, const std::string& help);

/// Lets an argument or option be one of these words, in any case, and puts the given spelling right.
void accept(CLI::Option& option, const std::vector<std::string>& words, Invocation& invocation);
/// Lets it be what `plain` finds a plain spelling for.
void accept(CLI::Option& option, std::function<std::optional<std::string>(const std::string&)> plain,
            const std::string& accepted, const std::vector<std::string>& words = {});
/// Lets it be a whole number in decimal digits.
void acceptWhole(CLI::Option& option, long long lowest, long long highest);
/// An option that takes a time.
CLI::Option& addTime(CLI::App& command, const std::string& name, const std::string& help,
                     std::function<void(std::chrono::milliseconds)> take);

/// "'given' is not accepted; accepted: a, b", with the one that was probably meant.
std::string notAccepted(const std::string& given, const std::vector<std::string>& words);

/// Finds the command that these words name and lets it fill `invocation`. Answers the exit code when there is nothing
/// left to be done: help was asked for, or the words are wrong, which stderr then says, and stdout too with --json
/// among the words or `isJson`.
std::optional<int> parse(CLI::App& app, std::vector<std::string> words, bool isJson = false);

}  // namespace kelarcctl
