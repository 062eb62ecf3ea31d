#include "contract/CallTest.h"

#include <algorithm>

namespace contract {

void CallTest::prepare(const PublishedCall& call)
{
    restart();
    if (!needsClosedObject(call))
        open();
}

void CallTest::run(const PublishedCall& call)
{
    call.request(kelarc(), answer());
    settle();
}

Strings CallTest::linesOf(const PublishedCall& call) const
{
    const std::string callText = call.callText;
    Strings found = lines();
    found.erase(std::remove_if(found.begin(), found.end(),
                               [&](const std::string& line) { return line.find(callText) == std::string::npos; }),
                found.end());
    return found;
}

std::string CallTest::answerText(const PublishedCall& call, int code)
{
    return "answer(" + std::to_string(code) + (code == 0 ? call.answerOnSuccess : call.answerOnFailure) + ")";
}

}  // namespace contract
