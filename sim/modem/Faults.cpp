#include "modem/Faults.h"

#include "receiver/Noise.h"

#include <algorithm>
#include <cmath>

namespace arcsim::modem {

using std::chrono::milliseconds;

namespace {

constexpr std::uint64_t kLatencyKey = 100;  // keeps these apart from the usual latencies, whose key has no such part
constexpr std::uint64_t kSecondKey = 101;

bool applies(const Fault& fault, std::size_t request, unsigned number, milliseconds now)
{
    if (fault.request != request)
        return false;
    if (fault.firstCall && (number < *fault.firstCall || number - *fault.firstCall >= fault.callCount))
        return false;
    return (!fault.from || now >= *fault.from) && (!fault.until || now < *fault.until);
}

template <typename Value>
void adopt(std::optional<Value>& value, const std::optional<Value>& from)
{
    if (!value)
        value = from;
}

void pad(std::optional<std::string>& text, std::size_t length)
{
    if (!text || text->size() >= length)
        return;
    const std::size_t end = !text->empty() && text->back() == '"' ? text->size() - 1 : text->size();
    text->insert(end, length - text->size(), 'x');
}

void dropQuotes(std::optional<std::string>& text)
{
    if (text)
        text->erase(std::remove(text->begin(), text->end(), '"'), text->end());
}

}  // namespace

milliseconds Latency::of(std::uint64_t seed, std::size_t request, unsigned number) const
{
    const double random = noise({seed, request, number, kLatencyKey});
    if (shape == Shape::even)
        return a + milliseconds(static_cast<milliseconds::rep>(random * static_cast<double>((b - a).count() + 1)));
    constexpr double kTwoPi = 6.283185307179586;
    // Box-Muller; 1 - random is never 0
    const double normal =
        std::sqrt(-2 * std::log(1 - random)) * std::cos(kTwoPi * noise({seed, request, number, kSecondKey}));
    const double drawn = static_cast<double>(a.count()) + normal * static_cast<double>(b.count());
    return milliseconds(std::llround(std::max(drawn, 0.0)));
}

FaultPlan::FaultPlan(std::uint64_t seed, std::vector<Fault> faults) : m_seed(seed)
{
    for (Fault& fault : faults)
        m_planned.push_back({fault, 0});
}

void FaultPlan::inject(Fault fault, unsigned callsSoFar)
{
    if (fault.firstCall)
        *fault.firstCall += callsSoFar;
    m_injected.insert(m_injected.begin(), {fault, 0});
}

void FaultPlan::clearInjected(std::optional<std::size_t> request)
{
    const auto dropped = [&](const Entry& entry) { return !request || entry.fault.request == *request; };
    m_injected.erase(std::remove_if(m_injected.begin(), m_injected.end(), dropped), m_injected.end());
}

std::vector<Fault> FaultPlan::injected() const
{
    std::vector<Fault> faults;
    for (const Entry& entry : m_injected)
        if (!entry.isUsedUp()) {
            faults.push_back(entry.fault);
            if (faults.back().times)
                *faults.back().times -= entry.used;
        }
    return faults;
}

FaultEffect FaultPlan::take(std::size_t request, unsigned number, milliseconds now)
{
    FaultEffect effect;
    for (std::vector<Entry>* const entries : {&m_injected, &m_planned})
        for (Entry& entry : *entries) {
            const Fault& fault = entry.fault;
            if (entry.isUsedUp() || !applies(fault, request, number, now))
                continue;
            ++entry.used;
            adopt(effect.code, fault.code);
            if (!effect.latency && fault.latency)
                effect.latency = fault.latency->of(m_seed, request, number);
            adopt(effect.indicator, fault.indicator);
            adopt(effect.replyLength, fault.replyLength);
            effect.hangs = effect.hangs || fault.hangs;
            effect.withoutQuotes = effect.withoutQuotes || fault.withoutQuotes;
        }
    forgetUsedUp(now);
    return effect;
}

bool FaultPlan::Entry::isUsedUp() const
{
    return (fault.times && used >= *fault.times) || (fault.firstCall && used >= fault.callCount);
}

void FaultPlan::forgetUsedUp(milliseconds now)
{
    // Not judged by the call's number: calls of several threads do not arrive in the order of their numbers.
    const auto isOver = [&](const Entry& entry) {
        return entry.isUsedUp() || (entry.fault.until && now >= *entry.fault.until);
    };
    m_injected.erase(std::remove_if(m_injected.begin(), m_injected.end(), isOver), m_injected.end());
}

std::optional<milliseconds> FaultPlan::nextEdge(milliseconds now) const
{
    std::optional<milliseconds> next;
    for (const Entry& entry : m_planned)
        for (const auto& edge : {entry.fault.from, entry.fault.until})
            if (edge && *edge > now && (!next || *edge < *next))
                next = edge;
    return next;
}

Reply distorted(Reply reply, const FaultEffect& effect)
{
    if (effect.withoutQuotes) {
        dropQuotes(reply.text);
        dropQuotes(reply.secondText);
    }
    if (effect.replyLength) {
        pad(reply.text, *effect.replyLength);
        pad(reply.secondText, *effect.replyLength);
    }
    if (effect.indicator && reply.lsta)
        reply.lsta->indicator = *effect.indicator;
    return reply;
}

}  // namespace arcsim::modem
