// Any bytes as a recording: the recording answers its own calls as recorded and converts to a valid scenario, or a
// ScenarioError says why not.

#include "arcsim/Convert.h"
#include "arcsim/ReplayBook.h"
#include "fuzz/Finding.h"
#include "scenario/ScenarioFile.h"

#include <cstdint>
#include <map>

namespace {

using arcsim::RecordedCall;
using arcsim::Recording;
using arcsim::ReplayBook;

/// Thread after thread, so that each stands for itself.
void replay(const Recording& recording)
{
    ReplayBook book(recording);
    std::map<int, std::vector<const RecordedCall*>> threads;
    for (const RecordedCall& call : recording.calls)
        threads[call.thread].push_back(&call);
    for (const auto& [thread, calls] : threads)
        for (const RecordedCall* const call : calls) {
            const ReplayBook::Answer answer = book.next(static_cast<ReplayBook::ThreadId>(thread),
                                                        std::string(call->function), call->arguments.value());
            if (answer.number != call->number || answer.hangs == call->end.has_value() ||
                (call->end && (answer.code != call->end->code || answer.outputs != call->end->outputs.value())))
                fuzz::finding("call " + std::to_string(call->number) + " is not answered as it was recorded");
            book.answered(answer.number);
        }
    if (const auto difference = book.finish())
        fuzz::finding("a recording differs from itself: " + arcsim::textOf(difference));
    if (book.dueEvents().size() != recording.events.size())
        fuzz::finding("events are left over when all calls have been made");
}

void requireScenario(const Recording& recording)
{
    const std::string text = arcsim::convert(recording).scenario.dump(4);
    try {
        arcsim::parseScenario("converted.json", text);
    } catch (const arcsim::ScenarioError& error) {
        fuzz::finding(std::string("no scenario: ") + error.what() + "\n" + text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        const Recording recording = arcsim::parseRecording("fuzz.jsonl", text);
        replay(recording);
        requireScenario(recording);
    } catch (const arcsim::ScenarioError& error) {
        fuzz::requireReadable(error.what());
    }
    return 0;
}
