// Measures the library, the machine's limits and the library's alternatives in one process, in rounds of shuffled
// order. Prints the environment, then one table for each question. Times of different runs are never compared: the
// tables show the ratio of KelArc to each peer in the same round.
//
//   hand-off      one thing to the worker and back: to an idle worker, and back to back  questions/HandOff.cpp
//   throughput    things a second with 1, 2 and 4 producers                              questions/Throughput.cpp
//   add           the caller's cost, by depth, and of a delayed add into the middle      questions/Add.cpp
//   request       a typed request from call to callback, beside one over D-Bus           questions/Request.cpp
//   log-line      a log line and a result line, beside fmt                               questions/LogLine.cpp
//   notification  an LSTA notification from entry point to callback                      questions/Notification.cpp
//   delayed       lateness and processor time of a delayed task                          questions/Delayed.cpp
//   idle          wake-ups and processor time in 10 s without work                       questions/Idle.cpp
//
// Counts that repeat (instructions, allocations, system calls) are scripts/counts's; sizes are bench/sizes's.

#include "questions/Questions.h"
#include "runner/Environment.h"
#include "support/Files.h"
#include "support/Printable.h"

#include <CLI/CLI.hpp>
#include <QtCore/QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>

namespace {

std::vector<std::string> questionNames()
{
    std::vector<std::string> names;
    std::transform(std::begin(bench::kQuestions), std::end(bench::kQuestions), std::back_inserter(names),
                   [](const bench::Question& question) { return question.name; });
    return names;
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app("Measures libKelArc beside the machine's limits and what would be used in its place.");
    std::vector<std::string> asked = questionNames();
    bench::Effort effort{101, std::random_device{}()};
    std::string jsonPath;
    app.add_option("questions", asked, "What to measure; everything if none is named")
        ->check(CLI::IsMember(questionNames()));
    app.add_option("--rounds", effort.rounds, "Rounds of each comparison")
        ->capture_default_str()
        ->check(CLI::Range(1, 1000));
    app.add_option("--seed", effort.seed, "Seed of the order of visits; different at every run if not given");
    app.add_option("--json", jsonPath, "File to write the tables to, for programs");
    CLI11_PARSE(app, argc, argv);

    QCoreApplication qt(argc, argv);
    nlohmann::ordered_json tables = nlohmann::ordered_json::array();
    const auto show = [&tables](const bench::Table& table) {
        std::printf("%s\n", bench::textOf(table).c_str());
        std::fflush(stdout);
        tables.push_back(bench::jsonOf(table));
    };
    show(bench::environment());
    for (const bench::Question& question : bench::kQuestions)
        if (std::find(asked.begin(), asked.end(), question.name) != asked.end())
            for (const bench::Table& table : question.measure(effort))
                show(table);

    if (!jsonPath.empty()) {
        try {
            support::writeOutput(jsonPath, tables.dump(2) + '\n', "the name of a file to write to");
        } catch (const support::FileError& error) {
            std::fprintf(stderr, "kelarc_bench: %s\n", support::printable(error.what()).c_str());
            return EXIT_FAILURE;
        }
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "kelarc_bench: the tables could not be printed\n");
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
