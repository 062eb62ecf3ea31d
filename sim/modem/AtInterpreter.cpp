#include "modem/AtInterpreter.h"

#include <algorithm>

namespace arcsim::modem {

namespace {

struct Command
{
    const char* command;
    const char* answer;
};

constexpr Command kCommands[] = {
    {"AT", ""},
    {"ATI", "KelArc\r\nSimulated modem\r\nRevision 1.0"},
    {"AT+CGMI", "KelArc"},
    {"AT+CGMM", "Simulated modem"},
    {"AT+CGMR", "1.0"},
    {"AT+CGSN", "000000000000000"},
    {"AT+CSQ", "+CSQ: 21,99"},
    {"AT+CREG?", "+CREG: 0,1"},
    {"AT+COPS?", "+COPS: 0,0,\"Simulated network\""},
};

std::string normalised(std::string line)
{
    const char* const blanks = " \t\r\n";
    line.erase(0, std::min(line.find_first_not_of(blanks), line.size()));
    line.erase(line.find_last_not_of(blanks) + 1);
    std::transform(line.begin(), line.end(), line.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return line;
}

}  // namespace

std::optional<std::string> atAnswer(const std::string& command)
{
    const std::string line = normalised(command);
    for (const Command& row : kCommands)
        if (line == row.command)
            return row.answer;
    return std::nullopt;
}

}  // namespace arcsim::modem
