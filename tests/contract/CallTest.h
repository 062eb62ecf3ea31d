#pragma once

#include "contract/CallTable.h"
#include "support/KelArcTest.h"

namespace contract {

using support::Kind;
using support::Strings;

/// One of the sixteen kinds of task, on an object that is ready for it.
class CallTest : public support::KelArcTest
{
protected:
    /// A new object in the state that the request needs: closed for open(), open for all others.
    void prepare(const PublishedCall& call);

    /// Makes the request and waits until everything that it has queued is done.
    void run(const PublishedCall& call);

    /// The lines that the task itself writes: a stop announces itself before, an open is two tasks.
    Strings linesOf(const PublishedCall& call) const;

    static std::string answerText(const PublishedCall& call, int code);
};

class EveryCall : public CallTest, public ::testing::WithParamInterface<PublishedCall>
{
};

}  // namespace contract
