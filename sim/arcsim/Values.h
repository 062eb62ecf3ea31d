#pragma once

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Options and arguments of commands. `name` is "--option" or, for a positional argument, a word in capitals. A wrong
// value is refused while the command line is read; the message gives the name and what is accepted. `value` must
// outlive the reading.

namespace arcsim::program {

using OnTime = std::function<void(std::chrono::milliseconds)>;

/// Any non-empty text; the help shows it as `shown`.
CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& shown, std::string& value,
                     const std::string& text);

/// One of several words, spelled exactly.
CLI::Option* addWord(CLI::App& command, const std::string& name, const std::string& shown,
                     const std::vector<std::string>& words, std::string& value, const std::string& text);

/// Decimal digits, with a leading minus if the range allows it.
CLI::Option* addWholeNumber(CLI::App& command, const std::string& name, std::int64_t lowest, std::int64_t highest,
                            std::optional<std::int64_t>& value, const std::string& text);

/// A finite number.
CLI::Option* addNumber(CLI::App& command, const std::string& name, double lowest, double highest,
                       std::optional<double>& value, const std::string& text);

CLI::Option* addTime(CLI::App& command, const std::string& name, std::chrono::milliseconds shortest,
                     const OnTime& onTime, const std::string& text);

/// A time or one of several words; `value` is the text as given.
CLI::Option* addTimeOrWord(CLI::App& command, std::chrono::milliseconds shortest, const std::vector<std::string>& words,
                           std::string& value, const std::string& text);

/// Two times after one option.
CLI::Option* addTwoTimes(CLI::App& command, const std::string& name, const std::string& shown,
                         std::vector<std::chrono::milliseconds>& times, const std::string& text);

/// One of the modem's functions, with or without its prefix and in any case; `value` becomes its name.
CLI::Option* addFunction(CLI::App& command, std::string& value, const std::string& text);

/// One of the `names` of satellite systems, in any case.
CLI::Option* addSystem(CLI::App& command, const std::vector<std::string>& names, std::string& value,
                       const std::string& text);
/// One or more of these names.
CLI::Option* addSystems(CLI::App& command, const std::vector<std::string>& names, std::vector<std::string>& values,
                        const std::string& text);

}  // namespace arcsim::program
