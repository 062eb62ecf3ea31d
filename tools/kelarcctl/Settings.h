#pragma once

#include "kelarcctl/Session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// A setting with an operation of its own in the library, by the words that people use for its values.
struct Setting
{
    /// What the modem said: its code and, with code 0, the value; empty when the reply was not understood.
    struct Reading
    {
        int code = 0;
        std::optional<std::string> value{};
    };

    std::string command;  ///< as on the command line, "system glonass" included
    std::string key;      ///< of the modem
    std::string unit;     ///< of numbers; may be empty
    std::string help;
    std::string accepted;            ///< for people; empty: cannot be written
    std::vector<std::string> words;  ///< what can be written, where that is a list
    std::function<Reading(Session&)> read;
    /// For an accepted value in its plain spelling. Answers the code.
    std::function<int(Session&, const std::string&)> write{};
    /// The plain spelling of what was typed; empty when that is not accepted.
    std::function<std::optional<std::string>(const std::string&)> plain{};
};

/// In the order in which they are shown.
const std::vector<Setting>& settings();

}  // namespace kelarcctl
