#include "questions/Measure.h"
#include "runner/Statistics.h"

#include <ctime>
#include <sched.h>

namespace bench {
namespace {

cpu_set_t g_everywhere;

}  // namespace

OneProcessor::OneProcessor()
{
    sched_getaffinity(0, sizeof g_everywhere, &g_everywhere);
    int last = CPU_SETSIZE - 1;  // the first processor has most of the interrupts
    while (last > 0 && !CPU_ISSET(last, &g_everywhere))
        --last;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(last, &one);
    sched_setaffinity(0, sizeof one, &one);
}

OneProcessor::~OneProcessor()
{
    sched_setaffinity(0, sizeof g_everywhere, &g_everywhere);
}

std::int64_t processorNs()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::vector<double> percentilesUs(const std::vector<double>& durationsNs)
{
    std::vector<double> percentiles;
    for (const double share : {0.5, 0.99, 0.999})
        percentiles.push_back(quantileOf(durationsNs, share) / 1000);
    return percentiles;
}

}  // namespace bench
