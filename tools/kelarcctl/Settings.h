#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// A setting that has its own operation in the library, with words for its values.
struct Setting
{
    enum class Shape
    {
        word,
        flag,  ///< "on" or "off"
        number,
    };

    /// The modem's answer: its code and, with code 0, the value; empty when the reply was not understood.
    struct Reading
    {
        int code = 0;
        std::optional<std::string> value{};
    };

    std::string command;  ///< as on the command line, for example "system glonass"
    std::string key;      ///< the modem's key
    std::string unit;     ///< unit of a number; may be empty
    std::string help;
    Shape shape = Shape::word;
    std::string accepted;            ///< for messages; empty if the setting is read only
    std::vector<std::string> words;  ///< the accepted values, if they are a list
    /// Does not wait: the answer comes on one of the library's threads.
    std::function<void(kelarc::KelArc&, std::function<void(Reading)>)> requestRead;
    /// Writes an accepted value in its plain spelling; the answer is the code. Empty: read only.
    std::function<void(kelarc::KelArc&, const std::string&, std::function<void(int)>)> requestWrite{};
    /// The plain spelling of a typed value; empty if it is not accepted.
    std::function<std::optional<std::string>(const std::string&)> plain{};

    /// The JSON form of a value in its plain spelling: a word, true or false, or a number.
    Json json(const std::string& value) const;
    bool isWritable() const { return requestWrite != nullptr; }
    // These wait for the answer.
    Reading read(Session& session) const;
    int write(Session& session, const std::string& value) const;
};

/// In the order in which they are shown.
const std::vector<Setting>& settings();

}  // namespace kelarcctl
