#pragma once

#include "runner/Rounds.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench {

/// The answer to one question: a name for each row, a cell for each column. A cell may be empty.
struct Table
{
    struct Row
    {
        std::string name;
        std::vector<std::string> cells;
        nlohmann::ordered_json values;  ///< the cells' values by name, for programs
    };

    std::string question;
    std::string note;  ///< how it was measured
    std::vector<std::string> columns;
    std::vector<Row> rows;
};

std::string textOf(const Table& table);
nlohmann::ordered_json jsonOf(const Table& table);

/// One of the figures that a comparison measures, and how it is shown.
struct Figure
{
    std::string name;
    int decimals;
};

/// Contenders as rows; each figure's median, and how the first contender's figure relates to this one's: the median of
/// the ratios within a round, with their quartiles.
Table comparison(const std::string& question, const std::string& note, const std::vector<Figure>& figures,
                 const Rounds& rounds);

std::string shown(double value, int decimals);

}  // namespace bench
