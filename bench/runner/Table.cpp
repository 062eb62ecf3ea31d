#include "runner/Table.h"

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

std::string padded(const std::string& text, std::size_t width, bool toTheRight)
{
    const std::string blanks(width > text.size() ? width - text.size() : 0, ' ');
    return toTheRight ? blanks + text : text + blanks;
}

std::string trimmed(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

}  // namespace

std::string shown(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string textOf(const Table& table)
{
    std::size_t nameWidth = 0;
    std::vector<std::size_t> widths;
    for (const std::string& column : table.columns)
        widths.push_back(column.size());
    for (const Table::Row& row : table.rows) {
        nameWidth = std::max(nameWidth, row.name.size());
        for (std::size_t i = 0; i < row.cells.size(); ++i)
            widths[i] = std::max(widths[i], row.cells[i].size());
    }

    std::string text = "## " + table.question + "\n" + (table.note.empty() ? "" : table.note + "\n");
    std::string head = padded("", nameWidth, false);
    for (std::size_t i = 0; i < table.columns.size(); ++i)
        head += "  " + padded(table.columns[i], widths[i], true);
    text += trimmed(head);
    for (const Table::Row& row : table.rows) {
        std::string line = padded(row.name, nameWidth, false);
        for (std::size_t i = 0; i < row.cells.size(); ++i)
            line += "  " + padded(row.cells[i], widths[i], true);
        text += trimmed(line);
    }
    return text;
}

nlohmann::ordered_json jsonOf(const Table& table)
{
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const Table::Row& row : table.rows) {
        nlohmann::ordered_json object{{"name", row.name}};
        object.update(row.values);
        rows.push_back(object);
    }
    return {{"question", table.question}, {"note", table.note}, {"rows", rows}};
}

Table comparison(const std::string& question, const std::string& note, const std::vector<Figure>& figures,
                 const Rounds& rounds)
{
    const std::vector<std::string> names = rounds.names();
    Table table{question, note, {}, {}};
    for (const Figure& figure : figures) {
        table.columns.push_back(figure.name);
        table.columns.push_back(names.front() + " to it");
    }
    for (std::size_t contender = 0; contender < names.size(); ++contender) {
        Table::Row row{names[contender], {}, {}};
        for (std::size_t which = 0; which < figures.size(); ++which) {
            const Quartiles figure = rounds.figure(contender, which);
            row.cells.push_back(shown(figure.median, figures[which].decimals));
            row.values[figures[which].name] = {
                {"lower", figure.lower}, {"median", figure.median}, {"upper", figure.upper}};
            if (contender == 0) {
                row.cells.emplace_back();
                continue;
            }
            const Quartiles ratio = rounds.ratio(0, contender, which);
            row.cells.push_back(shown(ratio.median, 2) + "x (" + shown(ratio.lower, 2) + "-" + shown(ratio.upper, 2) +
                                ")");
            row.values[figures[which].name]["ratio"] = {
                {"lower", ratio.lower}, {"median", ratio.median}, {"upper", ratio.upper}};
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

}  // namespace bench
