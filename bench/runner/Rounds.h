#pragma once

#include "runner/Statistics.h"

#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// A contender of a comparison. One visit measures its figures, the same number at every visit.
struct Contender
{
    std::string name;
    std::function<std::vector<double>()> measure;
};

/// A comparison. Every round visits each contender once, in a newly shuffled order, so that disturbances do not always
/// hit the same one. Contenders are compared within a round.
class Rounds
{
public:
    Rounds(std::vector<Contender> contenders, unsigned seed);

    /// An uncounted round comes first, to warm up caches, pages and threads.
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
