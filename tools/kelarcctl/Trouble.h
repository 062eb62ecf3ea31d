#pragma once

#include "kelarcctl/Output.h"

#include "support/Failure.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelarcctl {

/// What has gone wrong, for people and for scripts.
struct Trouble
{
    enum class Kind
    {
        refused,      ///< the modem or its client library has answered a code
        slow,         ///< it answers, but not in the time that there was
        silent,       ///< a call has not come back
        interrupted,  ///< by the user
        usage,        ///< what was typed, or the file of settings
        failed,       ///< something else, such as a file that cannot be written
    };

    Kind kind = Kind::failed;
    std::string text{};         ///< one sentence without its full stop
    std::optional<int> code{};  ///< what was answered, where that is the matter
    int attempts = 0;           ///< how often in a row, as far as that is known
    std::string cause{};        ///< sentences, as the next; both may be empty
    std::string next{};
    std::vector<std::string> notes{};  ///< what else there is to say, each for itself
    Json done = Json::object();        ///< members for the same document: what the command has found or done before

    /// The member "error" of a document.
    Json json() const;
    /// For standard error: lines without the last line end, with nothing in them that steers a terminal.
    std::string shown() const;
};

/// Ends a command because of a trouble.
class TroubleFailure : public support::Failure
{
public:
    TroubleFailure(int exitCode, Trouble trouble)
        : support::Failure(exitCode, trouble.text), m_trouble(std::move(trouble))
    {
    }

    const Trouble& trouble() const { return m_trouble; }

private:
    Trouble m_trouble;
};

/// What an exception says.
Trouble troubleOf(const std::exception& error);

/// The exit code of a program that an exception ends.
int exitCodeOf(const std::exception& error);

/// Says on standard error why the command ends, and with --json on standard output, too. Answers the exit code.
int report(const std::exception& error, const Output& output);

}  // namespace kelarcctl
