#pragma once

#include "kelarcctl/Output.h"
#include "kelarcctl/Trouble.h"

#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

enum class State
{
    ok,
    warning,  ///< works, but not as well as possible
    failed,
    skipped,  ///< cannot be checked because an earlier check failed
};

/// A problem, and what to do about it.
struct Problem
{
    std::string text;
    std::string next;
    std::optional<Trouble> trouble{};  ///< set if a request has failed
};

/// The result of one check.
struct Finding
{
    std::string check{};
    State state = State::ok;
    std::string detail{};
    std::vector<Problem> problems{};
    bool isStuck = false;  ///< the check has failed, and later checks rely on its success
};
Finding fine(std::string detail);
Finding failed(std::string reason, std::string next);
Finding failed(const Trouble& trouble);
/// The finding for a failed request.
Problem problemOf(const Trouble& trouble);
/// The same for a request that all later checks rely on.
Finding stuck(Finding finding);

/// Prints findings as they come; with --json, all of them at the end.
class Findings
{
public:
    explicit Findings(const Output& output) : m_output(output) {}

    void add(Finding finding);
    bool hasFailed() const { return m_failed > 0; }
    /// The overall result.
    void finish() const;

private:
    const Output m_output;
    int m_failed = 0;
    int m_warnings = 0;
    Json m_checks = Json::array();
    std::optional<Trouble> m_first{};  ///< the first failure
};

}  // namespace kelarcctl
