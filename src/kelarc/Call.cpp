#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"
#include "kelarc/LineWriter.h"
#include "kelarc/LogLine.h"

#include <chrono>
#include <ctime>

namespace kelarc {
namespace {

// Parts of a task's name.
constexpr std::string_view kBeforeLine = ".";
constexpr std::string_view kBeforeCall = ": ";
constexpr std::size_t kMostDigits = 10;

constexpr timespec kPauseAfterFailure{0, 250'000'000};

// "This API is temporary not available" and "A request got cancelled": the modem asks for another try.
bool isUncounted(int code)
{
    return code == result::TEMPORARILY_UNAVAILABLE || code == result::CANCELLED;
}

}  // namespace

/// "<source>.<line>: <call>", built with one allocation.
std::string taskName(const CallPolicy& policy, std::initializer_list<std::string_view> callText)
{
    const std::string_view source = kSource;
    std::size_t length = source.size() + kBeforeLine.size() + kMostDigits + kBeforeCall.size();
    for (const std::string_view part : callText)
        length += part.size();

    std::string name(length, '\0');
    LineWriter writer(name.data(), length);
    writer << source << kBeforeLine << policy.taskLine << kBeforeCall;
    for (const std::string_view part : callText)
        writer << part;
    name.resize(static_cast<std::size_t>(writer.next() - name.data()));
    return name;
}

void KelArc::addTask(const CallPolicy& policy, std::initializer_list<std::string_view> callText,
                     std::function<void(task::ExecutionReason)>&& body)
{
    addTask(taskName(policy, callText), std::move(body));
}

/// Needs no memory: once the name and the body exist, nothing can fail.
void KelArc::addTask(std::string&& name, std::function<void(task::ExecutionReason)>&& body)
{
    // A full queue answers 0 and keeps nothing: the request is silently dropped: published.
    m_taskQueue.addTask(std::move(name), std::move(body), std::chrono::milliseconds(0));
}

/// On the worker: the call of the running task, taken from the end of its name.
const char* KelArc::ownCallText() const
{
    const std::string_view name = m_taskQueue.ownName();
    return name.data() + name.find(kBeforeCall) + kBeforeCall.size();
}

CallResult KelArc::runCall(const CallPolicy& policy, Attempt attempt)
{
    return runCallNamed(ownCallText(), policy, attempt);
}

CallResult KelArc::runCallNamed(const char* callText, const CallPolicy& policy, Attempt attempt)
{
    if (policy.start == Start::ifActive && !isActive())
        return {kNotAttempted, CallEnd::refused};
    int retriesLeft = policy.budget;
    for (;;) {
        const auto begin = std::chrono::steady_clock::now();
        const int code = attempt();
        const std::chrono::nanoseconds elapsed = std::chrono::steady_clock::now() - begin;
        const auto elapsedMs = static_cast<unsigned>(elapsed.count() / 1'000'000);
        if (logArcResult(this, callText, code, elapsedMs, retriesLeft))
            return {code, CallEnd::success};
        // The budget is checked before the flag: the fifteenth failure gives up, it is not cancelled.
        if (retriesLeft == 0) {
            if (policy.tell == Tell::ifActive && !isActive())
                return {code, CallEnd::cancelled};
            if (policy.tell != Tell::never)
                log(policy.giveUpLevel, kSource, "operator()", policy.giveUpLine,
                    "Could not call successfully '%s' after %d retries", callText, kRetries);
            return {code, CallEnd::gaveUp};
        }
        if (policy.retry == Retry::whileActive && !isActive())
            return {code, CallEnd::cancelled};
    }
}

/// Logs one attempt, counts it against the budget and pauses after a failure, the last one included. True: succeeded.
bool KelArc::logArcResult(KelArc* self, const char* callText, int code, unsigned elapsedMs, int& retriesLeft)
{
    const bool succeeded = code == kSuccess;
    int level = 2;
    if (isUncounted(code)) {
        level = 3;
    } else if (!succeeded) {
        level = 4;
        if (retriesLeft > 0)
            --retriesLeft;
    }
    char line[kLogLineSize];
    formatResultLine(line, retriesLeft, callText, elapsedMs, code);
    self->m_logCb(level, line);
    if (!succeeded)
        nanosleep(&kPauseAfterFailure, nullptr);  // one sleep for each failure, even when a signal cuts it short
    return succeeded;
}

}  // namespace kelarc
