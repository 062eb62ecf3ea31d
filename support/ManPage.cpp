#include "support/CommandTexts.h"

#include <algorithm>
#include <set>

namespace support {

namespace {

/// Escapes a text, so that the formatter prints it literally.
std::string plain(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\'')
            escaped += "\\(aq";
        else
            escaped += c;
    }
    return escaped.empty() || escaped.front() != '.' ? escaped : "\\&" + escaped;
}

std::string item(const std::string& heading, const std::string& meaning)
{
    return ".TP\n" + heading + "\n" + plain(meaning) + "\n";
}

/// "-h, --help"
std::string namesOf(const CLI::Option& option)
{
    if (!option.nonpositional())
        return option.get_name();
    std::string names;
    for (const std::string& name : option.get_snames())
        names += (names.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames())
        names += (names.empty() ? "--" : ", --") + name;
    return names;
}

std::string itemOf(const CLI::Option& option)
{
    const std::string value =
        option.nonpositional() && option.get_items_expected_max() > 0 ? option.get_option_text() : "";
    return item("\\fB" + plain(namesOf(option)) + "\\fR" + (value.empty() ? "" : " \\fI" + plain(value) + "\\fR"),
                option.get_description());
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

class Page
{
public:
    Page(const CLI::App& app, const PageTexts& texts) : m_app(app), m_texts(texts) {}

    std::string text() const
    {
        std::string upper = m_app.get_name();
        std::transform(upper.begin(), upper.end(), upper.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
        std::string text = ".TH " + upper + " 1 \"\" \"" + m_texts.version + "\" \"User Commands\"\n.SH NAME\n" +
                           plain(m_app.get_name()) + " \\- " + plain(m_app.get_description()) + "\n.SH SYNOPSIS\n.B " +
                           plain(m_app.get_name()) +
                           "\n.I COMMAND\n[\\fIARGUMENT\\fR...] [\\fIOPTION\\fR...]\n.SH DESCRIPTION\n" +
                           plain(m_texts.description) + "\n.SH OPTIONS\n" + options() + ".SH COMMANDS\n";
        addCommands(text, m_app, "");
        for (const PageTexts::Section& section : m_texts.sections) {
            text += ".SH " + plain(section.title) + "\n";
            for (const TextRow& row : section.rows)
                text += item(plain(row.name), row.meaning);
        }
        return text;
    }

private:
    bool isOfEveryCommand(const CLI::Option& option) const
    {
        return option.get_group() == m_texts.everyCommand || &option == m_app.get_help_ptr() ||
               option.check_lname("help");
    }

    std::string options() const
    {
        std::string text = "Without a command:\n";
        for (const CLI::Option* const option : m_app.get_options())
            text += itemOf(*option);
        text += ".PP\nOf every command:\n";
        std::set<std::string> known;
        for (const CLI::App* const command : commandsOf(m_app))
            for (const CLI::Option* const option : command->get_options())
                if (isOfEveryCommand(*option) && known.insert(option->get_name()).second)
                    text += itemOf(*option);
        return text;
    }

    void addCommands(std::string& text, const CLI::App& command, const std::string& path) const
    {
        for (const CLI::App* const each : commandsOf(command)) {
            const std::string name = path + each->get_name();
            if (!commandsOf(*each).empty()) {
                addCommands(text, *each, name + " ");
                continue;
            }
            std::string usage = "\\fB" + plain(m_app.get_name() + " " + name) + "\\fR";
            std::string items;
            for (const CLI::Option* const option : each->get_options()) {
                if (!option->nonpositional())
                    usage += option->get_required() ? " \\fI" + plain(option->get_name()) + "\\fR"
                                                    : " [\\fI" + plain(option->get_name()) + "\\fR]";
                if (!isOfEveryCommand(*option))
                    items += itemOf(*option);
            }
            text += ".SS " + usage + "\n" + plain(each->get_description()) + "\n" + items;
        }
    }

    const CLI::App& m_app;
    const PageTexts& m_texts;
};

}  // namespace

std::string manPage(const CLI::App& app, const PageTexts& texts)
{
    return Page(app, texts).text();
}

std::string helpTable(const std::string& title, const std::vector<TextRow>& rows)
{
    constexpr std::size_t kIndent = 2;
    constexpr std::size_t kWidth = 80;
    std::string text = title + ":";
    for (const std::string& line : tableLines(rows, kWidth - kIndent))
        text += "\n" + std::string(kIndent, ' ') + line;
    return text;
}

}  // namespace support
