#pragma once

#include "runner/Statistics.h"

#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// Who takes part in a comparison, and what one visit measures: as many figures at every visit.
struct Contender
{
    std::string name;
    std::function<std::vector<double>()> measure;
};

/// A comparison: in every round each contender is visited once, in an order shuffled anew, so that whatever the machine
/// does meanwhile does not always meet the same one. Contenders are compared within a round.
class Rounds
{
public:
    Rounds(std::vector<Contender> contenders, unsigned seed);

    /// One round before the first is not counted: caches, pages and threads are there afterwards.
    void run(std::size_t rounds);

    std::vector<std::string> names() const;
    /// Over the rounds.
    Quartiles figure(std::size_t contender, std::size_t which) const;
    /// Of the contender's figure to the other one's of the same round, over the rounds.
    Quartiles ratio(std::size_t contender, std::size_t other, std::size_t which) const;

private:
    void visitAll(bool isCounted);

    std::vector<Contender> m_contenders;
    std::vector<std::vector<std::vector<double>>> m_figures;  ///< by contender, round and figure
    std::mt19937 m_random;
};

}  // namespace bench
