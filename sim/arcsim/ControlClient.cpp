#include "arcsim/ControlClient.h"

#include "arcsim/Duration.h"
#include "arcsim/ExitCode.h"
#include "support/Nesting.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kLongestShownLine = 60;

milliseconds remaining(steady_clock::time_point deadline)
{
    return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(deadline - steady_clock::now()));
}

[[noreturn]] void failNoDaemon(const std::string& socketPath, int error)
{
    throw ControlFailure(kExitNoDaemon, charactersOf("no daemon at " + socketPath + " (" + std::strerror(error) +
                                                     "); start one with: arcsim serve"));
}

sockaddr_un addressOf(const std::string& socketPath)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

/// The only time limit of connect(), which waits while the daemon has not accepted earlier connections.
void limitConnecting(int socket, milliseconds limit)
{
    timeval time{};
    time.tv_sec = limit.count() / 1000;
    time.tv_usec = std::max<suseconds_t>(1, limit.count() % 1000 * 1000);  // 0 s and 0 us would mean no limit
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

}  // namespace

ControlClient::ControlClient(const SocketPath& path, milliseconds timeout)
    : m_socketPath(path.path), m_timeout(timeout), m_deadline(steady_clock::now() + timeout)
{
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_socket < 0)
        failNoDaemon(m_socketPath, errno);
    try {
        connect();
        if (!path.isChosen)
            requireOwn();
    } catch (...) {
        ::close(m_socket);
        throw;
    }
}

ControlClient::~ControlClient()
{
    ::close(m_socket);
}

void ControlClient::connect()
{
    const sockaddr_un address = addressOf(m_socketPath);
    int outcome = 0;
    do {
        limitConnecting(m_socket, remaining(m_deadline));
        outcome = ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } while (outcome != 0 && errno == EINTR);
    if (outcome != 0 && errno == EAGAIN)
        failTimeout();
    if (outcome != 0)
        failNoDaemon(m_socketPath, errno);
    ::fcntl(m_socket, F_SETFL, O_NONBLOCK);
}

/// Asks for the user of the listening process; the owner of the socket file proves nothing.
void ControlClient::requireOwn() const
{
    ucred owner{};
    socklen_t size = sizeof owner;
    if (::getsockopt(m_socket, SOL_SOCKET, SO_PEERCRED, &owner, &size) == 0 &&
        (owner.uid == ::geteuid() || owner.uid == 0))
        return;
    throw ControlFailure(kExitNoDaemon, charactersOf("the daemon at " + m_socketPath + " belongs to the user " +
                                                     std::to_string(owner.uid) +
                                                     " and not to you, so it is not asked; to ask it all " +
                                                     "the same, name it by --socket or ARCSIM_SOCKET"));
}

Json ControlClient::ask(const Json& control)
{
    Json request{{"id", ++m_lastId}};
    request.update(control);
    send(request.dump() + '\n');
    for (;;) {
        const std::string line = nextLine();
        const Json answer = parsed(line);
        if (answer.contains("error") && !answer.contains("id"))
            throw ControlFailure(kExitRefused, answer["error"].is_string() ? answer["error"].get<std::string>() : line);
        if (!answer.contains("id") || wholeNumberOf(answer["id"]) != m_lastId)
            continue;  // an event, a greeting, or an answer to another request
        if (!answer.contains("ok") || !answer["ok"].is_boolean())
            failStranger(line);
        if (answer["ok"].get<bool>())
            return answer.value("result", Json::object());
        throw ControlFailure(kExitRefused, answer.contains("error") && answer["error"].is_string()
                                               ? answer["error"].get<std::string>()
                                               : "the daemon refused without a reason");
    }
}

void ControlClient::waitForEnd()
{
    m_missing = "has not ended";
    do
        m_received.clear();
    while (receive());
}

void ControlClient::send(const std::string& line)
{
    std::size_t sent = 0;
    while (sent < line.size()) {
        const ssize_t count = ::send(m_socket, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else if (errno == EAGAIN)
            waitFor(POLLOUT);
        else if (errno != EINTR)
            return;  // hung up; bytes sent before that are still to be read
    }
}

std::string ControlClient::nextLine()
{
    for (;;) {
        const std::size_t end = m_received.find('\n');
        if (end != std::string::npos) {
            std::string line = m_received.substr(0, end);
            m_received.erase(0, end + 1);
            return line;
        }
        if (m_received.size() >= kLongestLine)
            failStranger(m_received);
        if (!receive())
            throw ControlFailure(kExitNoAnswer,
                                 charactersOf("the daemon at " + m_socketPath + " hung up without an answer"));
    }
}

/// Receives bytes, waiting if there are none yet; false when the daemon has hung up.
bool ControlClient::receive()
{
    std::array<char, 4096> buffer{};
    for (;;) {
        // Checked first: an endless stream of data must not hide that the time is up.
        if (steady_clock::now() >= m_deadline)
            failTimeout();
        const ssize_t count = ::recv(m_socket, buffer.data(), buffer.size(), 0);
        if (count > 0) {
            m_received.append(buffer.data(), static_cast<std::size_t>(count));
            return true;
        }
        if (count < 0 && errno == EAGAIN)
            waitFor(POLLIN);
        else if (count == 0 || errno != EINTR)
            return false;
    }
}

void ControlClient::waitFor(short events) const
{
    pollfd waiting{m_socket, events, 0};
    const auto limit = std::min<std::int64_t>(remaining(m_deadline).count(), INT_MAX);
    if (::poll(&waiting, 1, static_cast<int>(limit)) == 0)
        failTimeout();
}

Json ControlClient::parsed(const std::string& line) const
{
    Json answer;
    const bool isCut = line.find('\0') != std::string::npos;  // the parser would take a zero byte for the end
    if (!isCut && support::nestingOf(line) <= support::kDeepestNesting)
        answer = Json::parse(line, nullptr, false);
    if (!answer.is_object())
        failStranger(line);
    return answer;
}

void ControlClient::failTimeout() const
{
    throw ControlFailure(kExitNoAnswer, charactersOf("the daemon at " + m_socketPath + " " + m_missing + " within " +
                                                     durationText(m_timeout)));
}

void ControlClient::failStranger(const std::string& line) const
{
    const std::string shown = line.size() > kLongestShownLine ? line.substr(0, kLongestShownLine) + "..." : line;
    throw ControlFailure(kExitNoDaemon,
                         charactersOf("what answers at " + m_socketPath + " is no daemon of ours, it says: " + shown));
}

}  // namespace arcsim::program
