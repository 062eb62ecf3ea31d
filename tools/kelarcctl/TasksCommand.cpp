#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/monitor/ResultLine.h"

#include "support/Printable.h"
#include "support/Words.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

namespace kelarcctl {

namespace {

/// Replaces the tabs in the library's listing, which would otherwise be printed as escapes.
std::string indented(const std::string& listing)
{
    std::string text;
    for (const char c : listing)
        text += c == '\t' ? std::string(2, ' ') : std::string(1, c);
    return text;
}

/// Shows the library's tasks whenever they have changed.
class QueueView
{
public:
    explicit QueueView(const Output& output) : m_output(output) {}

    void look(kelarc::KelArc& modem)
    {
        const std::uint32_t waiting = modem.getPendingTasks();  // before the running task: see kelarc/idle.h
        const std::uint32_t id = modem.getRunningTaskId();
        if (m_last == std::pair(id, waiting))
            return;
        m_last = {id, waiting};
        const std::string name = modem.getRunningTaskName();
        const std::int64_t due = modem.getDelayedExecutionTime();
        const std::string listing = waiting > 0 ? modem.tasksToString() : "";
        m_output.result({{"running", {{"id", id}, {"name", name}}},
                         {"waiting", waiting},
                         {"dueMs", due},
                         {"queue", queuedTasksOf(listing)}},
                        "running " + (id == 0 ? name : std::to_string(id) + ": " + name) + "; waiting: " +
                            std::to_string(waiting) + (listing.empty() ? "" : "\n" + indented(listing)));
    }

private:
    const Output m_output;
    std::pair<std::uint32_t, std::uint32_t> m_last{~0U, ~0U};
};

}  // namespace

void addTasks(CLI::App& app, Invocation& invocation)
{
    CLI::App& tasks = addCommand(
        app, "tasks", "Run another command, as in: tasks gnss stop; show the library's requests meanwhile (status)",
        invocation);
    tasks.prefix_command();
    tasks.callback([&invocation, &tasks] {
        const auto inner = std::make_shared<Program>();
        std::vector<std::string> words = tasks.remaining();
        if (words.empty())
            words.emplace_back("status");
        if (const auto exitCode = parse(inner->app, words, invocation.json))
            throw CLI::RuntimeError(*exitCode);
        if (inner->invocation.program || !inner->invocation.isOpened || support::sameLetters(words.front(), "tasks")) {
            std::fprintf(stderr, "kelarcctl tasks: '%s' cannot be looked at; accepted: commands that make requests\n",
                         words.front().c_str());
            throw CLI::RuntimeError(kExitUsage);
        }
        invocation.run = [inner](Session& session, const Output& output) {
            const auto view = std::make_shared<QueueView>(output);
            session.observe([view, &session] { view->look(session.modem()); });
            return inner->invocation.run(session, output);
        };
    });
}

}  // namespace kelarcctl
