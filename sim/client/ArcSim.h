#pragma once

// Control of the simulated modem from inside the process that uses it: scripts answers per function and call number,
// sends events, and lists the calls. For tests; programs are controlled by a scenario file (docs/simulator.md).
//
// Every function may be called from any thread, also from an Answer's `during`.

#include "arc/ArcRilD.h"
#include "modem/Function.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#pragma GCC visibility push(default)  // the library hides all other symbols

namespace arcsim {

/// The scripted answer of one call, which replaces the modem model's: the model's state stays unchanged, and only the
/// outputs that are set here are written. The client library, not the model, keeps the handler given to
/// ARC_RegisterNotification: it is registered whenever the answer is 0.
struct Answer
{
    int code = 0;                             ///< result code; for ARC_GetArcVersion anything but 0 is a null pointer
    std::chrono::milliseconds latency{0};     ///< how long the call takes, on top of `during`
    std::function<void()> during{};           ///< runs on the calling thread before the answer; may block
    std::optional<std::string> text{};        ///< reply, first version, AT answer or raw output text (see `terminated`)
    std::optional<std::string> secondText{};  ///< the second text of ARC_GetRilVersion
    std::optional<int> indicator{};           ///< write indicator of ARC_CheckModuleSetting
    std::optional<LstaInfo> record{};         ///< record of ARC_CurrentLSTA
    bool terminated = true;                   ///< false: texts are copied without their terminating zero
};

/// One call as the library received it.
struct Call
{
    Function function{};
    unsigned number = 0;                   ///< 1 for the first call of this function since reset()
    std::vector<std::string> arguments{};  ///< in declaration order; numbers in decimal, bools 0/1, texts as they are,
                                           ///< null pointers "null", output buffers and functions "set"
    std::thread::id thread{};              ///< the thread that called
};

/// Puts the modem into its start state (closed, default settings, engine off), drops all scripts and the record of
/// calls, forgets the registered handler. Latencies are off afterwards. A scenario that the environment names is read
/// again and begins anew.
///
/// Returns when raw output has ended and no handler is running (called from a handler, it does not wait for that
/// handler). Waiting events are dropped; deliverEvent() of a dropped event returns false. A call that another thread is
/// making goes on; if the modem has to answer it, the new modem does.
void reset();

/// Switches realistic latencies of the model's own answers. Programs start with true, reset() sets false.
void setRealisticLatency(bool on);

/// The `number`-th call of `function` since reset() (1 is the first) gives this answer. Takes priority over the two
/// functions below.
void answerCall(Function function, unsigned number, Answer answer);
/// The next calls of `function` that answerCall() does not name give these answers, one each, in this order.
void answerNext(Function function, std::vector<Answer> answers);
/// All calls of `function` that the two functions above do not answer give this answer, until clearAnswers() or
/// reset().
void answerAlways(Function function, Answer answer);
/// Drops all scripts of `function`: the model answers again.
void clearAnswers(Function function);

/// The number of calls that are kept, of all functions together. Each further call drops the oldest from calls().
/// Numbers, scripts and waitForCalls() still count all calls.
constexpr std::size_t kKeptCalls = 1000;
/// The latest calls since reset(), at most kKeptCalls, in the order in which they began.
std::vector<Call> calls();
/// Those of them that called `function`.
std::vector<Call> calls(Function function);
/// Waits until `function` has been called `count` times since reset(); false when `limit` passed first.
bool waitForCalls(Function function, unsigned count, std::chrono::milliseconds limit = std::chrono::seconds(30));

/// Calls the registered handler on the modem's notification thread and returns after the handler; false, without a
/// call, when no handler is registered. `data` and `length` are passed unchanged. Events queued earlier go first,
/// except when called from the handler itself: then the event is handled at once, nested in the other one.
bool deliverEvent(int id, void* data, int length);
/// Queues an event with a copy of `payload` for the notification thread and returns at once; events arrive in order.
void queueEvent(int id, std::vector<unsigned char> payload);
/// Identity of the notification thread (it is started on demand).
std::thread::id notificationThread();

/// The model's value of a setting with its quotes, as a read would answer it; empty for an unknown key.
std::string setting(const std::string& key);
/// Changes a setting behind the application's back, unchecked.
void setSetting(const std::string& key, const std::string& quotedValue);

/// State of the GNSS engine.
enum class Engine
{
    Off,
    Starting,
    Running,
};
Engine engine();
bool isOpen();

}  // namespace arcsim

#pragma GCC visibility pop
