#pragma once

#include "kelarc/KelArc.h"
#include "sim/client/ArcSim.h"
#include "support/Answer.h"
#include "support/Gate.h"
#include "support/Journal.h"
#include "support/Pauses.h"
#include "support/ResultText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace support {

using arcsim::Function;
using Kind = Journal::Kind;
using Strings = std::vector<std::string>;

/// An object on a simulated modem in its start state; everything that happens is in the journal. Pauses take no time.
class KelArcTest : public ::testing::Test
{
protected:
    KelArcTest();
    ~KelArcTest() override;

    kelarc::KelArc& kelarc() { return *m_kelarc; }

    /// A new object on a new modem, an empty journal, no scripts.
    void restart();
    /// Destroys the object, whatever it is doing: calls succeed from now on.
    void destroy();
    /// Destroys the object while calls go on to be answered as scripted.
    void destroyAsScripted() { m_kelarc.reset(); }

    /// Opens the object and clears the journal.
    void open();
    /// Closes the object and clears the journal.
    void close();
    /// Waits until no task runs or waits.
    void settle();
    /// Makes the object active although it is closed, and clears the journal.
    void activateWhileClosed();
    /// Makes the object inactive at once, without a log line; an open one is closed when the worker comes to it.
    void cancel() { kelarc().close(); }

    /// Occupies the worker until the gate is opened. The journal shows the occupying task, ARC_ResetAGNSS(), when it
    /// ends; its answer is not recorded.
    Gate holdWorker();

    /// The callback of a request: journals "answer(...)".
    Answer answer(std::string label = "answer") { return Answer(journal, std::move(label)); }
    /// A callback that receives events: journals "event(...)".
    Answer event(std::string label = "event") { return Answer(journal, std::move(label), Kind::event); }

    /// The next calls of `function` end with these codes; calls after them with 0.
    static void script(Function function, const std::vector<int>& codes);
    /// The next `count` calls of `function` end with `code`.
    static void failTimes(Function function, unsigned count, int code);
    /// Runs during the pause with that number, counted from now.
    void duringPause(std::size_t number, std::function<void()> action);

    /// The worker's thread, known after any call has been made.
    static std::thread::id workerThread();
    static std::size_t callCount(Function function) { return arcsim::calls(function).size(); }
    /// The arguments of the last call of `function`; empty when there was none.
    static Strings lastArguments(Function function);

    Strings lines() const { return journal.texts(Kind::line); }
    Strings answers() const { return journal.texts(Kind::answer); }
    Strings events() const { return journal.texts(Kind::event); }

    Journal journal;

private:
    void forget();
    void observePauses(std::function<void(std::size_t)> action);

    std::unique_ptr<kelarc::KelArc> m_kelarc;  // after the journal, which it writes into
};

/// Names the tests of a table after its rows.
struct ByName
{
    template <typename Row>
    std::string operator()(const ::testing::TestParamInfo<Row>& row) const
    {
        return row.param.name;
    }
};

/// The answer of a call that succeeds for any request, with the right record for a query of BeiDou's LSTA.
arcsim::Answer success();
/// An LSTA record.
LstaInfo lstaInfo(int indicator, int status, double value);

/// Writes a text as a setting's reply with code 0.
arcsim::Answer reply(const std::string& text, int code = 0);

}  // namespace support
