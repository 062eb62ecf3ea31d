#pragma once

// The manual page and the completion of a program, made from the commands and options that it parses. The caller adds
// everything else: exit codes, keys, examples.

#include "support/TextTable.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace support {

/// The texts of a manual page other than commands and options.
struct PageTexts
{
    std::string version{};
    std::string description{};
    std::string everyCommand{};  ///< group of the options that every command has; they are listed once

    struct Section
    {
        std::string title;
        std::vector<TextRow> rows;
    };
    std::vector<Section> sections{};  ///< after the commands
};

/// Accepted words of options and arguments.
struct TypedWords
{
    std::map<const CLI::Option*, std::vector<std::string>> words{};  ///< options that take one of these
    std::vector<const CLI::Option*> files{};                         ///< options that take the name of a file
};

/// A page of section 1 in man's own language.
std::string manPage(const CLI::App& app, const PageTexts& texts);

/// A script for bash.
std::string bashCompletion(const CLI::App& app, const TypedWords& typed);

/// A titled table for the foot of a help text.
std::string helpTable(const std::string& title, const std::vector<TextRow>& rows);

}  // namespace support
