#include "kelarcctl/Session.h"

#include "kelarcctl/Advice.h"
#include "kelarcctl/ExitCode.h"

#include "kelarc/idle.h"

#include "support/Printable.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kLongestClose{3000};
constexpr milliseconds kBetweenIdleLooks{10};
constexpr milliseconds kLongestRestart{3000};  ///< of a daemon; a refusal during that time is not final
constexpr milliseconds kBeforeNotice{5000};
constexpr milliseconds kSlowCall{1000};  ///< normal calls are faster: the slowest, opening, takes under a second
constexpr int kNotAttempted = 32;

/// Whether `descriptor` becomes readable within the limit. Also ends early when the second descriptor, unless it is -1,
/// is readable.
bool isReadable(int descriptor, int interrupt, Session::Clock::time_point until)
{
    pollfd watched[] = {{descriptor, POLLIN, 0}, {interrupt, POLLIN, 0}};
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(until - Session::Clock::now()).count();
        const int count = ::poll(watched, 2, static_cast<int>(std::clamp<long long>(left, 0, 86'400'000)));
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
        if (count > 0 || left <= 0)
            return count > 0 && watched[0].revents != 0;  // true also after a hang-up, which reading then reports
    }
}

long long toMs(Session::Clock::duration duration)
{
    return std::chrono::duration_cast<milliseconds>(duration).count();
}

/// " 3 times", or empty for once.
std::string timesText(int count)
{
    return count > 1 ? " " + std::to_string(count) + " times" : "";
}

}  // namespace

Bell::Bell() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
}

Bell::~Bell()
{
    ::close(m_descriptor);
}

void Bell::wake()
{
    ::eventfd_write(m_descriptor, 1);
}

void Bell::quiet()
{
    eventfd_t count = 0;
    ::eventfd_read(m_descriptor, &count);
}

Session::Session(kelarc::KelArc& modem, const support::Interrupt& interrupt, Log& log, milliseconds timeout)
    : m_modem(modem), m_interrupt(interrupt), m_log(log), m_timeout(timeout), m_end(Clock::now() + timeout),
      m_deadline(m_end)
{
}

void Session::open()
{
    const auto [code] = ask<int>("opening the modem",
                                 [&](auto&& callback) { m_modem.open(std::forward<decltype(callback)>(callback)); });
    require(code, "opening the modem");
}

milliseconds Session::longestClose()
{
    return kLongestClose;
}

/// The way to end without closing; empty once the modem is open, since it must then be closed.
std::optional<Session::Closing> Session::awaitOpening(Clock::time_point until) const
{
    const auto begin = Clock::now();
    while (!m_modem.isOpen()) {
        if (kelarc::waitUntilIdle(m_modem, kBetweenIdleLooks))
            return m_modem.isOpen() ? std::nullopt : std::optional(Closing::done);
        // The library pauses after a failed attempt, so no call is under way if the process ends now.
        const auto last = m_log.results().lastWhile(m_modem.getRunningTaskName());
        if (last && last->attempts > 0 && last->when > begin)
            return Closing::unneeded;
        if (Clock::now() >= until)
            return Closing::late;
    }
    return std::nullopt;
}

Session::Closing Session::close()
{
    const auto end = Clock::now() + kLongestClose;
    if (const auto ended = awaitOpening(end))
        return *ended;
    m_modem.close([bell = m_closed](int) { bell->wake(); });
    return isReadable(m_closed->descriptor(), -1, end) ? Closing::done : Closing::late;
}

Trouble Session::refusal(int code, const std::string& what) const
{
    const Advice& advice = adviceOn(code);
    Trouble trouble{Trouble::Kind::refused, what + " failed", code, 0, advice.cause, advice.next, {}, {}};
    if (const auto answer = m_log.results().last(code)) {
        trouble.attempts = answer->attempts;
        trouble.text += timesText(answer->attempts) + ": " + textAndCode(answer->line);
    } else if (code == kNotAttempted) {
        trouble.text += ": it was not attempted, for the modem is not open (32)";
        trouble.cause = "Another request or a stop has made the library inactive.";
        trouble.next = "Run the command again.";
    } else {
        trouble.text += ": result code " + std::to_string(code);
    }
    return trouble;
}

void Session::require(int code, const std::string& what) const
{
    if (code != 0)
        throw TroubleFailure(kExitRefused, refusal(code, what));
}

Trouble Session::hindrance(const std::string& what, Clock::duration since) const
{
    const std::string task = m_modem.getRunningTaskName();  // "kelarc/KelArc.141: ARC_Open()"
    const std::string call = task.substr(task.find(": ") == std::string::npos ? 0 : task.find(": ") + 2);
    const auto last = m_log.results().lastWhile(task);
    // The last call of that task may have returned before this request began.
    const auto silence = last ? std::min(since, Clock::now() - last->when) : since;
    const std::string open = call + " has not returned for " + std::to_string(toMs(silence)) + " ms";
    if (last && last->attempts > 0) {
        Trouble trouble = refusal(last->line.code, what);
        trouble.attempts = last->attempts;
        trouble.text = what + " failed" + timesText(last->attempts) + ": " + textAndCode(last->line);
        if (last->line.tookMs >= kSlowCall.count())
            trouble.notes.push_back("each answer was late, the last by " + std::to_string(last->line.tookMs) + " ms");
        if (silence >= kBeforeNotice)
            trouble.notes.push_back(open);
        return trouble;
    }
    Trouble trouble;
    if (last && last->line.tookMs >= kSlowCall.count()) {
        trouble.kind = Trouble::Kind::slow;
        trouble.text =
            what + ": the modem is slow, " + last->line.call + " took " + std::to_string(last->line.tookMs) + " ms";
        trouble.cause = "The modem answers, but late: it is overloaded, or its line is.";
        trouble.next = "Give it more time with --timeout; see to the modem's other users.";
        return trouble;
    }
    trouble.kind = Trouble::Kind::silent;
    trouble.text = what + ": " + open;
    trouble.cause = "The call hangs in the client library, in the RIL daemon or in the modem.";
    trouble.next = "Restart the RIL daemon, then the modem; run this again.";
    return trouble;
}

/// Whether the modem keeps giving an answer that does not change by itself. Requests with limited attempts end anyway.
bool Session::isInVain() const
{
    const auto last = m_log.results().lastWhile(m_modem.getRunningTaskName());
    const bool isRepeated = last && last->attempts > 0 && (last->line.retriesLeft < 0 || !m_modem.isOpen());
    return isRepeated && !adviceOn(last->line.code).mayPass;
}

void Session::settle(const std::string& what)
{
    // Requests with equal clock readings would be reordered.
    for (const auto before = Clock::now(); Clock::now() == before;) {
    }
    ask<int, std::string>(what,
                          [&](auto&& callback) { m_modem.getArcVersion(std::forward<decltype(callback)>(callback)); });
}

void Session::beginGrace(milliseconds time)
{
    m_isInGrace = true;
    m_end = Clock::now() + time;
    limit(time);
}

void Session::limit(milliseconds limit)
{
    const auto now = Clock::now();
    m_deadline = std::min(m_end, now + limit);
    m_timeout = std::chrono::ceil<milliseconds>(std::max(m_deadline - now, Clock::duration::zero()));
}

bool Session::isRung(int descriptor, Clock::time_point until) const
{
    constexpr milliseconds kBetweenLooks{100};
    const int interrupt = m_isInGrace ? -1 : m_interrupt.descriptor();
    if (!m_observer)
        return isReadable(descriptor, interrupt, until);
    for (;;) {
        m_observer();
        const auto look = std::min(until, Clock::now() + kBetweenLooks);
        if (isReadable(descriptor, interrupt, look))
            return true;
        if (m_interrupt.isRequested() || look == until)
            return false;
    }
}

bool Session::waitFor(int descriptor, Clock::time_point until, const std::string& what)
{
    if (isRung(descriptor, until))
        return true;
    if (m_interrupt.isRequested() && !m_isInGrace)
        throw Failure(kExitInterrupted, "interrupted while " + what);
    return false;
}

void Session::await(const Bell& bell, const std::string& what)
{
    constexpr milliseconds kBetweenLooks{100};
    const auto begin = Clock::now();
    auto inVainSince = Clock::time_point::max();
    bool isNoticed = m_isQuiet;
    for (;;) {
        const auto now = Clock::now();
        if (wait(bell, std::min(m_deadline, now + kBetweenLooks), what))
            return;
        Trouble trouble = hindrance(what, now - begin);
        inVainSince = isInVain() ? std::min(inVainSince, now) : Clock::time_point::max();
        if (inVainSince != Clock::time_point::max() && now - inVainSince >= kLongestRestart)
            throw TroubleFailure(kExitRefused, trouble);
        if (Clock::now() >= m_deadline) {
            trouble.text = "no success within " + std::to_string(m_timeout.count()) + " ms: " + trouble.text;
            throw TroubleFailure(kExitDeadline, trouble);
        }
        if (!isNoticed && now - begin >= kBeforeNotice) {
            std::fprintf(stderr, "kelarcctl: still waiting: %s\n", support::printable(trouble.text).c_str());
            isNoticed = true;
        }
    }
}

}  // namespace kelarcctl
