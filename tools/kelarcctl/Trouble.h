#pragma once

#include "kelarcctl/Output.h"

#include "support/Failure.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelarcctl {

/// A failure, for people and for scripts.
struct Trouble
{
    enum class Kind
    {
        refused,      ///< the modem or its client library has answered with an error code
        slow,         ///< the modem answers, but not within the time limit
        silent,       ///< a call has not returned
        interrupted,  ///< by the user
        usage,        ///< wrong command line or file of settings
        failed,       ///< something else, such as a file that cannot be written
    };

    Kind kind = Kind::failed;
    std::string text{};         ///< one sentence without a full stop
    std::optional<int> code{};  ///< the answered code, if that is the failure
    int attempts = 0;           ///< how often in a row, if known
    std::string cause{};        ///< sentences, like the next; both may be empty
    std::string next{};
    std::vector<std::string> notes{};  ///< further independent remarks
    Json done = Json::object();        ///< members of the same document: what the command has found or done so far

    /// The value of a document's member "error".
    Json json() const;
    /// Lines for standard error, without the last line end and without terminal control characters.
    std::string shown() const;
};

/// The exception that ends a command with a trouble.
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

/// The trouble of any exception.
Trouble troubleOf(const std::exception& error);

/// The exit code of a program that an exception ends.
int exitCodeOf(const std::exception& error);

/// Prints on standard error why the command ends, and with --json also on standard output. Returns the exit code.
int report(const std::exception& error, const Output& output);

}  // namespace kelarcctl
