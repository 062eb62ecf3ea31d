#include "runner/Rounds.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace bench {

Rounds::Rounds(std::vector<Contender> contenders, unsigned seed)
    : m_contenders(std::move(contenders)), m_figures(m_contenders.size()), m_random(seed)
{
}

void Rounds::run(std::size_t rounds)
{
    visitAll(false);
    for (std::size_t round = 0; round < rounds; ++round)
        visitAll(true);
}

void Rounds::visitAll(bool isCounted)
{
    std::vector<std::size_t> order(m_contenders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), m_random);
    for (const std::size_t contender : order) {
        std::vector<double> figures = m_contenders[contender].measure();
        if (isCounted)
            m_figures[contender].push_back(std::move(figures));
    }
}

std::vector<std::string> Rounds::names() const
{
    std::vector<std::string> names;
    for (const Contender& contender : m_contenders)
        names.push_back(contender.name);
    return names;
}

Quartiles Rounds::figure(std::size_t contender, std::size_t which) const
{
    std::vector<double> values;
    for (const std::vector<double>& figures : m_figures[contender])
        values.push_back(figures[which]);
    return quartilesOf(values);
}

Quartiles Rounds::ratio(std::size_t contender, std::size_t other, std::size_t which) const
{
    std::vector<double> values;
    for (std::size_t round = 0; round < m_figures[contender].size(); ++round)
        values.push_back(m_figures[contender][round][which] / m_figures[other][round][which]);
    return quartilesOf(values);
}

}  // namespace bench
