#include "kelarcctl/Session.h"

#include "kelarcctl/ExitCode.h"

#include "kelarc/idle.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kLongestClose{3000};
constexpr milliseconds kLongestEnd{500};  ///< of a request that has been answered

/// Readable within the limit? Ends early, too, for the second descriptor, unless it is -1.
bool isReadable(int descriptor, int interrupt, Session::Clock::time_point until)
{
    pollfd watched[] = {{descriptor, POLLIN, 0}, {interrupt, POLLIN, 0}};
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(until - Session::Clock::now()).count();
        const int count = ::poll(watched, 2, static_cast<int>(std::clamp<long long>(left, 0, 86'400'000)));
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
        if (count > 0 || left <= 0)
            return count > 0 && watched[0].revents != 0;  // also when the other side has hung up: reading tells
    }
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
    const auto [code] = ask<int>("opening the modem", [&](auto&& callback) { m_modem.open(std::move(callback)); });
    require(code, "opening");
}

bool Session::close()
{
    if (!m_modem.isOpen())
        return kelarc::waitUntilIdle(m_modem, kLongestEnd);
    const auto bell = std::make_shared<Bell>();
    m_modem.close([bell](int) { bell->wake(); });
    return isReadable(bell->descriptor(), -1, Clock::now() + kLongestClose);
}

void Session::require(int code, const std::string& what)
{
    if (code != 0)
        throw Failure(kExitRefused, "the modem refused " + what + ": " + m_log.textOf(code));
}

void Session::settle(const std::string& what)
{
    // Requests of one clock reading would change places.
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
    if (!wait(bell, m_deadline, what))
        throw Failure(kExitDeadline, "no answer within " + std::to_string(m_timeout.count()) + " ms while " + what +
                                         "; running: " + m_modem.getRunningTaskName());
}

}  // namespace kelarcctl
