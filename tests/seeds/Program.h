#pragma once

// The steps of one seed's run, as data. They follow from the seed alone.

#include "seeds/Requests.h"

#include <cstdint>
#include <string>
#include <vector>

namespace seeds {

/// One thing that is done to the library, the modem or the daemon.
struct Step
{
    enum class Kind
    {
        request,
        kill,         ///< the daemon, served again after `count` pauses; `isFlag`: while its output is read
        fault,        ///< the next `count` calls of `function` fail with `number`, or as `fault` says
        hang,         ///< the next call of `function` hangs; `release` says how that ends
        clear,        ///< injected faults are dropped, and what hangs is let go
        outage,       ///< of `number` ms
        reset,        ///< of the modem
        jam,          ///< `text` for `number` ms
        noFix,        ///< for `number` ms
        set,          ///< the setting `text` becomes `value`, behind the application's back
        events,       ///< `count` with the id `number`
        lsta,         ///< of the system `text` becomes `number` with the value `count`
        otherClient,  ///< connects and dies; `number` says what it did before
        read,         ///< `count` epochs of the raw output
        advance,      ///< virtual time by `number` ms
        rescue,       ///< of the test itself: no faults, and the client library is opened past the object
        destroy,      ///< the object, and a new one is made
    };
    enum class Release
    {
        clear,
        kill,
        outage,
        reset,
    };
    Kind kind{};
    Request request{};
    std::string function{};
    std::string fault{};  ///< members of the control beside function and times; empty: a code
    Release release{};
    int number = 0;
    int count = 0;
    bool flag = false;
    std::string text{};
    std::string value{};
};

/// Steps that are done while nothing is under way, or behind a request that holds the worker; and steps that are done
/// later, at numbered moments at which the worker calls the application back.
struct Phase
{
    bool isHeld = false;
    bool isOneMoment = false;  ///< the clock stands while the requests are made
    std::vector<Step> first{};
    struct Later
    {
        int moment = 0;  ///< of the phase, from 1
        Step step{};
    };
    std::vector<Later> later{};  ///< in order
};

struct Program
{
    std::uint64_t seed = 0;
    bool hasLatencies = false;  ///< answers take their time, which is virtual
    std::vector<Phase> phases{};
};

Program programOf(std::uint64_t seed);

std::string wordsOf(const Step& step);
/// All of it, a line a step.
std::string wordsOf(const Program& program);

}  // namespace seeds
