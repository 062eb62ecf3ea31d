#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// A setting with an operation of its own in the library, by the words that people use for its values.
struct Setting
{
    enum class Shape
    {
        word,
        flag,  ///< "on" or "off"
        number,
    };

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
    Shape shape = Shape::word;
    std::string accepted;            ///< for people; empty where it cannot be written
    std::vector<std::string> words;  ///< what can be written, where that is a list
    /// Without waiting: the answer comes on one of the library's threads.
    std::function<void(kelarc::KelArc&, std::function<void(Reading)>)> requestRead;
    /// The same for an accepted value in its plain spelling; answers the code. Empty: cannot be written.
    std::function<void(kelarc::KelArc&, const std::string&, std::function<void(int)>)> requestWrite{};
    /// The plain spelling of what was typed; empty when that is not accepted.
    std::function<std::optional<std::string>(const std::string&)> plain{};

    /// A value in its plain spelling as scripts read it: a word, true or false, or a number.
    Json json(const std::string& value) const;
    bool isWritable() const { return requestWrite != nullptr; }
    // Waiting for the answer.
    Reading read(Session& session) const;
    int write(Session& session, const std::string& value) const;
};

/// In the order in which they are shown.
const std::vector<Setting>& settings();

}  // namespace kelarcctl
