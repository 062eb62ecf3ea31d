#include "kelarcctl/Texts.h"

#include "support/Words.h"

#include <algorithm>

namespace kelarcctl {

namespace {

std::string spaced(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

bool isFile(const Invocation& invocation, const CLI::Option* option)
{
    return std::find(invocation.files.begin(), invocation.files.end(), option) != invocation.files.end();
}

/// The words that can follow these, as lines of a case statement: a pattern is the words so far, joined by one space.
void addCases(std::string& text, const CLI::App& command, const std::string& path, const Invocation& invocation)
{
    std::vector<std::string> words;
    for (const CLI::App* const each : command.get_subcommands([](const CLI::App*) { return true; }))
        words.push_back(each->get_name());
    std::string values;
    bool takesFile = false;
    for (const CLI::Option* const option : command.get_options()) {
        const auto listed = invocation.words.find(option);
        const std::string known = listed == invocation.words.end() ? "" : spaced(listed->second);
        if (option->nonpositional()) {
            const std::string name = "--" + option->get_lnames().front();
            words.push_back(name);
            if (!known.empty() || isFile(invocation, option))
                values += "        '" + path + "|" + name + "')\n            words='" + known + "'" +
                          (isFile(invocation, option) ? "; files=1" : "") + " ;;\n";
            else if (option->get_items_expected_max() > 0)
                values += "        '" + path + "|" + name + "') ;;\n";  // a value that nobody can guess
        } else {
            if (!known.empty())
                words.push_back(known);
            takesFile = takesFile || isFile(invocation, option);
        }
    }
    text += values + "        '" + path + "|'*)\n            words='" + spaced(words) + "'" +
            (takesFile ? "; files=1" : "") + " ;;\n";
    for (const CLI::App* const each : command.get_subcommands([](const CLI::App*) { return true; }))
        addCases(text, *each, path + (path.empty() ? "" : " ") + each->get_name(), invocation);
}

}  // namespace

std::string bashCompletion(const CLI::App& app, const Invocation& invocation)
{
    std::string groups;
    for (const CLI::App* const each : app.get_subcommands([](const CLI::App*) { return true; }))
        if (!each->get_subcommands([](const CLI::App*) { return true; }).empty())
            groups += (groups.empty() ? "" : "|") + each->get_name();
    std::string text = R"(# Completion of kelarcctl for bash.
_kelarcctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path= words= files=
    if [ "$COMP_CWORD" -gt 1 ]; then
        path=${COMP_WORDS[1]}
        case $path in
            )" + groups +
                       R"() [ "$COMP_CWORD" -gt 2 ] && path="$path ${COMP_WORDS[2]}" ;;
        esac
    fi
    case "$path|$previous" in
)";
    addCases(text, app, "", invocation);
    return text + R"(    esac
    COMPREPLY=()
    while read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$words" -- "$current")
    if [ -n "$files" ]; then
        while read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}
complete -F _kelarcctl kelarcctl
)";
}

}  // namespace kelarcctl
