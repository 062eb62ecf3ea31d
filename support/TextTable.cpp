#include "support/TextTable.h"

#include <algorithm>
#include <sstream>

namespace support {

std::vector<std::string> tableLines(const std::vector<TextRow>& rows, std::size_t width)
{
    constexpr std::size_t kGap = 2;
    std::size_t column = 0;
    for (const TextRow& row : rows)
        column = std::max(column, row.name.size() + kGap);
    std::vector<std::string> lines;
    for (const TextRow& row : rows) {
        lines.push_back(row.name);
        lines.back().resize(column, ' ');
        std::istringstream words(row.meaning);
        for (std::string word; words >> word;) {
            const bool isFirst = lines.back().size() == column;
            if (!isFirst && lines.back().size() + 1 + word.size() > width)
                lines.push_back(std::string(column, ' ') + word);
            else
                lines.back() += (isFirst ? "" : " ") + word;
        }
    }
    return lines;
}

}  // namespace support
