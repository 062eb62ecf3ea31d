#include "modem/Settings.h"

#include <algorithm>

namespace arcsim::modem {

namespace {

struct Row
{
    std::string key;
    std::string start;
    std::vector<std::string> words;  ///< empty for a number
    int lowest;
    int highest;

    bool readOnly() const { return words.empty() && lowest > highest; }
};

Row oneOf(const char* key, const char* start, std::vector<std::string> words)
{
    return {key, start, std::move(words), 0, 0};
}
Row number(const char* key, const char* start, int lowest, int highest)
{
    return {key, start, {}, lowest, highest};
}
Row readOnly(const char* key, const char* text)
{
    return {key, text, {}, 1, 0};
}

const std::vector<Row>& rows()
{
    // Never destroyed: threads of the simulation may still read it while the process exits.
    static const auto* const table = new std::vector<Row>{
        oneOf("Power/Cpu", "std", {"std", "max"}),
        oneOf("Power/Psm", "0", {"0", "1"}),
        oneOf("Nmea/Data/Format", "Nmea", {"Nmea", "Raw"}),
        number("Nmea/Data/RawMask", "0", 0, 255),
        oneOf("Nmea/DRSync", "off", {"off", "on"}),
        oneOf("Nmea/Sbas", "on", {"off", "on"}),
        oneOf("Nmea/FreqMs", "1000", {"1000", "500", "200", "100"}),
        oneOf("Engine/Glonass", "1", {"0", "1"}),
        oneOf("Engine/Galileo", "1", {"0", "1"}),
        oneOf("Engine/Beidou", "1", {"0", "1"}),
        oneOf("Engine/Qzss", "0", {"0", "1"}),
        number("Sens/MinElevAngle", "5", 5, 45),
        readOnly("Raw/Version", "1.0 (simulated)"),
    };
    return *table;
}

const Row* find(const std::string& key)
{
    const auto row = std::find_if(rows().begin(), rows().end(), [&](const Row& each) { return each.key == key; });
    return row == rows().end() ? nullptr : &*row;
}

/// Plain decimal digits without sign, blanks or leading zeros, as the modem itself writes numbers.
bool isNumberWithin(const std::string& text, int lowest, int highest)
{
    const bool digitsOnly = !text.empty() && text.size() <= 3 &&
                            std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!digitsOnly || (text.size() > 1 && text.front() == '0'))
        return false;
    const int value = std::stoi(text);
    return value >= lowest && value <= highest;
}

bool allows(const Row& row, const std::string& quoted)
{
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"')
        return false;
    const std::string text = quoted.substr(1, quoted.size() - 2);
    if (row.words.empty())
        return isNumberWithin(text, row.lowest, row.highest);
    return std::find(row.words.begin(), row.words.end(), text) != row.words.end();
}

}  // namespace

Settings::Settings()
{
    for (const Row& row : rows())
        m_quoted[row.key] = quote(row.start);
}

std::optional<std::string> Settings::read(const std::string& key) const
{
    const auto found = m_quoted.find(key);
    return found == m_quoted.end() ? std::nullopt : std::optional(found->second);
}

std::string Settings::plain(const std::string& key) const
{
    std::string text = read(key).value_or("");
    text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
    return text;
}

Settings::Write Settings::write(const std::string& key, const std::string& quoted)
{
    const Row* const row = find(key);
    if (row == nullptr)
        return Write::unknownKey;
    if (row->readOnly())
        return Write::readOnly;
    if (!allows(*row, quoted))
        return Write::wrongValue;
    std::string& value = m_quoted[key];
    if (value == quoted)
        return Write::same;
    value = quoted;
    ++m_changes;
    return Write::changed;
}

void Settings::force(const std::string& key, const std::string& quoted)
{
    m_quoted[key] = quoted;
    ++m_changes;
}

std::vector<std::string> Settings::keys()
{
    std::vector<std::string> keys;
    for (const Row& row : rows())
        keys.push_back(row.key);
    return keys;
}

std::string Settings::accepted(const std::string& key)
{
    const Row* const row = find(key);
    if (row == nullptr)
        return "";
    if (row->readOnly())
        return "nothing (read only)";
    if (row->words.empty())
        return std::to_string(row->lowest) + " to " + std::to_string(row->highest);
    std::string text = row->words.front();
    for (std::size_t i = 1; i < row->words.size(); ++i)
        text += (i + 1 == row->words.size() ? " or " : ", ") + row->words[i];
    return text;
}

}  // namespace arcsim::modem
