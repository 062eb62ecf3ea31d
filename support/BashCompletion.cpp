#include "support/CommandTexts.h"

#include <algorithm>

namespace support {

namespace {

std::string spaced(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

bool isFile(const TypedWords& typed, const CLI::Option* option)
{
    return std::find(typed.files.begin(), typed.files.end(), option) != typed.files.end();
}

/// The words that can follow a command, as lines of a case statement: a pattern is the words so far, joined by a space.
void addCases(std::string& text, const CLI::App& command, const std::string& path, const TypedWords& typed)
{
    std::vector<std::string> words;
    for (const CLI::App* const each : command.get_subcommands([](const CLI::App*) { return true; }))
        words.push_back(each->get_name());
    std::string values;
    bool takesFile = false;
    for (const CLI::Option* const option : command.get_options()) {
        const auto listed = typed.words.find(option);
        const std::string known = listed == typed.words.end() ? "" : spaced(listed->second);
        if (option->nonpositional()) {
            const std::string name = "--" + option->get_lnames().front();
            words.push_back(name);
            if (!known.empty() || isFile(typed, option))
                values += "        '" + path + "|" + name + "')\n            words='" + known + "'" +
                          (isFile(typed, option) ? "; files=1" : "") + " ;;\n";
            else if (option->get_items_expected_max() > 0)
                values += "        '" + path + "|" + name + "') ;;\n";  // a value without a list of words
        } else {
            if (!known.empty())
                words.push_back(known);
            takesFile = takesFile || isFile(typed, option);
        }
    }
    text += values + "        '" + path + "|'*)\n            words='" + spaced(words) + "'" +
            (takesFile ? "; files=1" : "") + " ;;\n";
    for (const CLI::App* const each : command.get_subcommands([](const CLI::App*) { return true; }))
        addCases(text, *each, path + (path.empty() ? "" : " ") + each->get_name(), typed);
}

}  // namespace

std::string bashCompletion(const CLI::App& app, const TypedWords& typed)
{
    std::string groups;
    for (const CLI::App* const each : app.get_subcommands([](const CLI::App*) { return true; }))
        if (!each->get_subcommands([](const CLI::App*) { return true; }).empty())
            groups += (groups.empty() ? "" : "|") + each->get_name();
    const std::string second = groups.empty() ? "" : R"(        case $path in
            )" + groups + R"() [ "$COMP_CWORD" -gt 2 ] && path="$path ${COMP_WORDS[2]}" ;;
        esac
)";
    const std::string& name = app.get_name();
    std::string text = "# Completion of " + name + " for bash.\n_" + name + R"(()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path="" words="" files=""
    if [ "$COMP_CWORD" -gt 1 ]; then
        path=${COMP_WORDS[1]}
)" + second + R"(    fi
    case "$path|$previous" in
)";
    addCases(text, app, "", typed);
    return text + R"(    esac
    COMPREPLY=()
    while read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$words" -- "$current")
    if [ -n "$files" ]; then
        while read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}
complete -F _)" +
           name + " " + name + "\n";
}

}  // namespace support
