#pragma once

#include "kelarc/KelArc.h"
#include "sim/client/ArcSim.h"
#include "support/Answer.h"

#include <ostream>
#include <string>
#include <vector>

// Every published value of the sixteen kinds of task, as the tests' own literals.

namespace contract {

enum class Tell
{
    never,
    always,
    ifActive,
};

/// What a task answers.
enum class Answers
{
    nothing,
    once,
    onFailure,  ///< and nothing when it was cancelled
    unlessCancelled,
};

struct PublishedCall
{
    const char* name;
    arcsim::Function function;
    unsigned taskLine;
    const char* taskText;  ///< null: the call text
    const char* callText;
    int budget;      ///< 15, or -1 for calls without limit
    bool startTest;  ///< no attempt while the object is inactive
    bool loopTest;   ///< no further attempt while the object is inactive
    Tell tell;
    int giveUpLevel;
    unsigned giveUpLine;
    Answers answers;
    const char* answerOnSuccess;  ///< what follows the code
    const char* answerOnFailure;
    void (*request)(kelarc::KelArc& kelarc, support::Answer answer);
};

const std::vector<PublishedCall>& publishedCalls();

std::ostream& operator<<(std::ostream& out, const PublishedCall& call);

/// The request of open(), which queues two of the tasks, is made on a closed object.
bool needsClosedObject(const PublishedCall& call);

inline std::string taskName(const PublishedCall& call)
{
    return "kelarc/KelArc." + std::to_string(call.taskLine) + ": " +
           (call.taskText != nullptr ? call.taskText : call.callText);
}

}  // namespace contract
