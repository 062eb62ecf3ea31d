#pragma once

#include "runner/Table.h"

#include <vector>

namespace bench {

struct Effort
{
    std::size_t rounds;
    unsigned seed;
};

std::vector<Table> handOff(const Effort& effort);
std::vector<Table> throughput(const Effort& effort);
std::vector<Table> add(const Effort& effort);
std::vector<Table> request(const Effort& effort);
std::vector<Table> logLine(const Effort& effort);
std::vector<Table> notification(const Effort& effort);
std::vector<Table> delayed(const Effort& effort);
std::vector<Table> idle(const Effort& effort);

struct Question
{
    const char* name;
    std::vector<Table> (*measure)(const Effort& effort);
};

constexpr Question kQuestions[] = {
    {"hand-off", handOff}, {"throughput", throughput},     {"add", add},         {"request", request},
    {"log-line", logLine}, {"notification", notification}, {"delayed", delayed}, {"idle", idle},
};

}  // namespace bench
