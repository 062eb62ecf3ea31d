#include "kelarcctl/Findings.h"

#include "support/Printable.h"

#include <cstddef>
#include <utility>

namespace kelarcctl {

namespace {

const char* nameOf(State state)
{
    switch (state) {
    case State::ok:
        return "ok";
    case State::warning:
        return "warning";
    case State::failed:
        return "failed";
    case State::skipped:
        break;
    }
    return "skipped";
}

Trouble troubleOf(const std::string& check, const Problem& problem)
{
    Trouble trouble;
    trouble.text = check + ": " + problem.text;
    trouble.next = problem.next;
    return trouble;
}

std::string padded(const std::string& text, std::size_t width)
{
    return text + std::string(text.size() < width ? width - text.size() : 1, ' ');
}

}  // namespace

Finding fine(std::string detail)
{
    Finding finding;
    finding.detail = std::move(detail);
    return finding;
}

Finding failed(std::string reason, std::string next)
{
    return {"", State::failed, "", {{std::move(reason), std::move(next)}}};
}

Finding failed(const Trouble& trouble)
{
    return {"", State::failed, "", {problemOf(trouble)}};
}

Problem problemOf(const Trouble& trouble)
{
    std::string text = trouble.text;
    for (const std::string& note : trouble.notes)
        text += "; " + note;
    return {text + ". " + trouble.cause, trouble.next, trouble};
}

Finding stuck(Finding finding)
{
    finding.isStuck = true;
    return finding;
}

void Findings::add(Finding finding)
{
    constexpr std::size_t kCheckWidth = 20;
    constexpr std::size_t kStateWidth = 9;
    m_failed += finding.state == State::failed ? 1 : 0;
    m_warnings += finding.state == State::warning ? 1 : 0;
    Json problems = Json::array();
    std::string text =
        padded(finding.check, kCheckWidth) +
        (finding.detail.empty() ? nameOf(finding.state) : padded(nameOf(finding.state), kStateWidth) + finding.detail);
    const std::string margin = "\n" + std::string(kCheckWidth, ' ');
    for (const Problem& problem : finding.problems) {
        Json json{{"text", problem.text}, {"next", problem.next}};
        if (problem.trouble)
            json["error"] = problem.trouble->json();
        problems.push_back(json);
        text += margin + support::printable(problem.text) + margin + "-> " + support::printable(problem.next);
        if (finding.state == State::failed && !m_first)
            m_first = problem.trouble ? *problem.trouble : troubleOf(finding.check, problem);
    }
    m_checks.push_back({{"check", finding.check},
                        {"state", nameOf(finding.state)},
                        {"detail", finding.detail},
                        {"problems", problems}});
    m_output.text(text);
}

void Findings::finish() const
{
    const std::string text = m_failed + m_warnings == 0
                                 ? "Nothing is wrong."
                                 : std::to_string(m_failed) + " failed, " + std::to_string(m_warnings) + " warned.";
    Json json{{"healthy", m_failed + m_warnings == 0}, {"checks", m_checks}};
    if (m_first)
        json["error"] = m_first->json();
    m_output.result(json, text);
}

}  // namespace kelarcctl
