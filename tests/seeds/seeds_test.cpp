// One seed is one run. A seed gives a program: requests of every public operation with right and wrong arguments, kills
// of the daemon, calls that hang, refusals, outages, jams, events, other clients that die, and the end of the object at
// any moment. The program is done to the library, the client library of the simulated modem and its daemon, and what
// was seen is held against what the contract says, entry by entry (Oracle.h, ModemModel.h).
//
//     seeds_tests                                 the seeds of CI
//     KELARC_SEED=4711 seeds_tests                this one, and its program and what was seen in plain words
//     KELARC_SEEDS=1000-1999 seeds_tests          all of these
//
// Every seed runs twice, and both runs have to be the same: every log line but for its milliseconds, every pause and
// every answer in one order, every event between the two steps of the test between which it came, and every sentence.
// That holds because the worker waits for the test whenever it calls back (Stage.h), and because the daemon's clock
// stands (Daemon.h). It does not hold for how long a call took, for which thread of the client library was the first to
// find a connection again, and for what is read from the terminal after a kill.

#include "seeds/Blocks.h"
#include "seeds/Oracle.h"
#include "seeds/Reader.h"
#include "support/HeldBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace seeds {
namespace {

#ifdef KELARC_SANITIZER_ALLOCATES
constexpr int kSeedsOfCi = 40;
#else
constexpr int kSeedsOfCi = 200;
#endif
constexpr std::uint64_t kSeedsOfATest = 20;

struct Seeds
{
    std::uint64_t first = 1;
    std::uint64_t last = kSeedsOfCi;
    bool areShown = false;
};

std::ostream& operator<<(std::ostream& out, const Seeds& seeds)
{
    return out << seeds.first << " to " << seeds.last;
}

Seeds seedsOfEnvironment()
{
    Seeds seeds;
    if (const char* const one = std::getenv("KELARC_SEED")) {
        seeds.first = seeds.last = std::strtoull(one, nullptr, 10);
        seeds.areShown = true;
    } else if (const char* const many = std::getenv("KELARC_SEEDS")) {
        char* end = nullptr;
        seeds.first = std::strtoull(many, &end, 10);
        seeds.last = std::strtoull(*end == '\0' ? many : end + 1, nullptr, 10);
    }
    return seeds;
}

/// In parts, so that several can run at a time.
std::vector<Seeds> partsOfSeeds()
{
    const Seeds all = seedsOfEnvironment();
    std::vector<Seeds> parts;
    for (std::uint64_t first = all.first; first <= all.last; first += kSeedsOfATest)
        parts.push_back({first, std::min(all.last, first + kSeedsOfATest - 1), all.areShown});
    return parts;
}

std::vector<std::string> shown(const std::vector<Entry>& entries)
{
    std::vector<std::string> lines;
    for (const Entry& entry : entries)
        lines.push_back((entry.isWorkers ? "        " : "  ") + entry.text);
    return lines;
}

struct Ran
{
    std::uint64_t digest = kNoDigest;
    std::vector<std::string> problems{};
    std::vector<std::string> seen{};
    Oracle::Counts counts{};
};

/// Where two runs of a program part.
std::string difference(const std::vector<std::string>& first, const std::vector<std::string>& second)
{
    const auto [one, other] = std::mismatch(first.begin(), first.end(), second.begin(), second.end());
    std::string text = "two runs differ:\n";
    constexpr std::ptrdiff_t kBefore = 5;
    for (auto line = one - std::min(kBefore, one - first.begin()); line != one; ++line)
        text += "    " + *line + "\n";
    text += "  first:  " + (one == first.end() ? "its end" : *one) + "\n";
    return text + "  second: " + (other == second.end() ? "its end" : *other) + "\n";
}

Ran ran(const Program& program)
{
    Ran result;
    Play play(program);
    Outcome outcome = play.run();
    result.problems = std::move(outcome.problems);
    result.seen = shown(outcome.entries);
    for (const std::string& line : result.seen)
        result.digest = digestOf(line + '\n', result.digest);
    Oracle oracle(program, outcome.entries);
    try {
        oracle.check();
    } catch (const Wrong& wrong) {
        result.problems.emplace_back(wrong.what());
    }
    result.counts = oracle.counts();
    return result;
}

/// A thread of the client library may still be busy with the end of its connection.
long moreThan(long before)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (heldBlocks() > before && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    return heldBlocks() - before;
}

void check(const Program& program, bool isShown, Oracle::Counts& sum)
{
    const Ran first = ran(program);
    const long before = heldBlocks();
    {
        const Ran again = ran(program);
        const bool isSame = first.seen == again.seen;
        EXPECT_TRUE(isSame) << difference(first.seen, again.seen);
        for (const std::string& problem : again.problems)
            ADD_FAILURE() << "when run again: " << problem;
    }
    const long more = moreThan(before);
    EXPECT_LE(more, 0) << "pieces of memory are left";
    for (const std::string& problem : first.problems)
        ADD_FAILURE() << problem;
    std::printf("seed %llu: %016llx, %d requests, %d attempts, %d answers, %d dropped, %+ld pieces of memory\n",
                static_cast<unsigned long long>(program.seed), static_cast<unsigned long long>(first.digest),
                first.counts.requests, first.counts.attempts, first.counts.answers, first.counts.dropped, more);
    if (isShown)
        std::printf("%s", wordsOf(program).c_str());
    for (std::size_t i = 0; isShown && i < first.seen.size(); ++i)
        std::printf("%s\n", first.seen[i].c_str());
    sum.requests += first.counts.requests;
    sum.attempts += first.counts.attempts;
    sum.answers += first.counts.answers;
}

class ASeed : public testing::TestWithParam<Seeds>
{
protected:
    ASeed() { Daemon::socketOfThisProcess(); }
};

TEST_P(ASeed, GivesARunInWhichEverythingIsAsPromised)
{
    Oracle::Counts sum;
    for (std::uint64_t seed = GetParam().first; seed <= GetParam().last; ++seed) {
        const Program program = programOf(seed);
        check(program, GetParam().areShown, sum);
        ASSERT_FALSE(HasFailure()) << "KELARC_SEED=" << seed << "\n" << wordsOf(program);
    }
    EXPECT_GT(sum.requests, 0);
    EXPECT_GT(sum.attempts, 0);
    EXPECT_GT(sum.answers, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, ASeed, testing::ValuesIn(partsOfSeeds()), [](const auto& seeds) {
    return std::to_string(seeds.param.first) + "To" + std::to_string(seeds.param.last);
});

}  // namespace
}  // namespace seeds
