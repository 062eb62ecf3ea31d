#pragma once

// The manual page and the completion of a program, made of the commands and options that it parses. What cannot be seen
// from those is given beside them: exit codes, keys, examples.

#include "support/TextTable.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace support {

/// What a manual page says beside commands and options.
struct PageTexts
{
    std::string version{};
    std::string description{};
    std::string everyCommand{};  ///< group of the options that every command has; they are told once

    struct Section
    {
        std::string title;
        std::vector<TextRow> rows;
    };
    std::vector<Section> sections{};  ///< after the commands
};

/// What can be typed for options and arguments.
struct TypedWords
{
    std::map<const CLI::Option*, std::vector<std::string>> words{};  ///< where that is a list
    std::vector<const CLI::Option*> files{};                         ///< those that take the name of a file
};

/// A page of section 1 in man's own language.
std::string manPage(const CLI::App& app, const PageTexts& texts);

/// A script for bash.
std::string bashCompletion(const CLI::App& app, const TypedWords& typed);

/// A table for the foot of a help text, below its title.
std::string helpTable(const std::string& title, const std::vector<TextRow>& rows);

}  // namespace support
