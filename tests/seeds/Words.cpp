// A program in plain words, for people who look at one that has failed.

#include "kelarc/logsink/Printable.h"
#include "seeds/Program.h"

namespace seeds {
namespace {

using Kind = Step::Kind;

std::string ms(int time)
{
    return std::to_string(time) + " ms";
}

std::string releaseWords(const Step& step)
{
    switch (step.release) {
    case Step::Release::clear:
        return "it is let go";
    case Step::Release::kill:
        return "the daemon is killed, served again after " + std::to_string(step.count) + " pauses";
    case Step::Release::outage:
        return "an outage of " + ms(step.number) + " begins";
    case Step::Release::reset:
        break;
    }
    return "the modem is reset";
}

std::string faultWords(const Step& step)
{
    const std::string what = step.fault.empty() ? "answer " + std::to_string(step.number) : "go wrong by " + step.fault;
    return "the next " + std::to_string(step.count) + " calls of " + step.function + " " + what;
}

std::string deeds(int number)
{
    static const char* const words[] = {"connects and says nothing", "connects as one that is open",
                                        "connects as one that is open, and starts the engine",
                                        "connects and says half a line"};
    return words[number];
}

}  // namespace

std::string wordsOf(const Step& step)
{
    switch (step.kind) {
    case Kind::request:
        return "request " + wordsOf(step.request);
    case Kind::kill:
        return std::string("kill the daemon") + (step.flag ? " while its output is read" : "") +
               ", serve again after " + std::to_string(step.count) + " pauses";
    case Kind::fault:
        return faultWords(step);
    case Kind::hang:
        return "the next call of " + step.function + " hangs until " + releaseWords(step);
    case Kind::clear:
        return "drop all faults";
    case Kind::outage:
        return "an outage of " + ms(step.number);
    case Kind::reset:
        return "reset the modem";
    case Kind::jam:
        return "jam " + step.text + " for " + ms(step.number);
    case Kind::noFix:
        return "no fix for " + ms(step.number);
    case Kind::set:
        return "set " + step.text + " to " + step.value + " behind the application's back";
    case Kind::events:
        return "send event " + std::to_string(step.number) + ", " + std::to_string(step.count + 1) + " times";
    case Kind::lsta:
        return "the LSTA of " + step.text + " becomes " + std::to_string(step.number) + " with " +
               std::to_string(step.count);
    case Kind::otherClient:
        return "another client " + deeds(step.number) + ", and dies";
    case Kind::read:
        return "read " + std::to_string(step.count) + " epochs of the raw output";
    case Kind::advance:
        return "let " + ms(step.number) + " pass";
    case Kind::rescue:
        return "drop all faults and open the client library, for what would be repeated for ever";
    case Kind::destroy:
        break;
    }
    return "destroy the object and make a new one";
}

std::string wordsOf(const Program& program)
{
    std::string text = "seed " + std::to_string(program.seed) + ", a modem " +
                       (program.hasLatencies ? "whose answers take their time" : "that answers at once") + "\n";
    int number = 0;
    for (const Phase& phase : program.phases) {
        text += "phase " + std::to_string(++number);
        text += phase.isHeld ? ", while getArcVersion() holds the worker" : "";
        text += phase.isOneMoment ? ", at one reading of the clock" : "";
        text += "\n";
        for (const Step& step : phase.first)
            text += "    " + wordsOf(step) + "\n";
        for (const Phase::Later& later : phase.later)
            text += "    when the worker has called back " + std::to_string(later.moment) +
                    " times: " + wordsOf(later.step) + "\n";
    }
    return text;
}

}  // namespace seeds
