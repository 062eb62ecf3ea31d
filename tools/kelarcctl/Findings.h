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
    warning,  ///< works, but not as it could
    failed,
    skipped,  ///< cannot be told because of what failed before
};

/// What is not as it should be, and what to do about it.
struct Problem
{
    std::string text;
    std::string next;
    std::optional<Trouble> trouble{};  ///< where a request has failed
};

/// What one check has found.
struct Finding
{
    std::string check{};
    State state = State::ok;
    std::string detail{};
    std::vector<Problem> problems{};
    bool isStuck = false;  ///< it has failed, and what is checked after it relies on its success
};
Finding fine(std::string detail);
Finding failed(std::string reason, std::string next);
Finding failed(const Trouble& trouble);
/// How a request has failed.
Problem problemOf(const Trouble& trouble);
/// The same, as one that all others rely on.
Finding stuck(Finding finding);

/// Puts findings out as they come; with --json all of them at the end.
class Findings
{
public:
    explicit Findings(const Output& output) : m_output(output) {}

    void add(Finding finding);
    bool hasFailed() const { return m_failed > 0; }
    /// What comes of them all.
    void finish() const;

private:
    const Output m_output;
    int m_failed = 0;
    int m_warnings = 0;
    Json m_checks = Json::array();
    std::optional<Trouble> m_first{};  ///< of what has failed
};

}  // namespace kelarcctl
