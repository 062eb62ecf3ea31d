#include "arcsim/LineServer.h"

#include <asio/post.hpp>
#include <asio/write.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <deque>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace arcsim {

namespace {

using Protocol = asio::local::stream_protocol;

constexpr std::chrono::milliseconds kAcceptPause{100};
constexpr std::chrono::seconds kMostSending{1};

bool isOwnUser(Protocol::socket& socket)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    return ::getsockopt(socket.native_handle(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 &&
           credentials.uid == ::geteuid();
}

bool somebodyServes(const std::string& path)
{
    asio::io_context context;
    Protocol::socket socket(context);
    asio::error_code error;
    socket.connect(Protocol::endpoint(path), error);
    return !error;
}

/// Removes a socket that a dead process has left; removes nothing that is not a socket.
void makeRoom(const std::string& path)
{
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0)
        return;
    if (!S_ISSOCK(found.st_mode))
        throw std::runtime_error(path + ": already exists and is not a socket; give another path");
    if (somebodyServes(path))
        throw std::runtime_error(path + ": is served by another process already");
    ::unlink(path.c_str());
}

/// Processes that start at one path at the same time take turns: each checks the path and serves before the next one
/// checks. Otherwise two could both remove a third one's leftover, and the later one the socket of the earlier. The
/// folder itself is locked, so no lock file is left behind. If another process holds the lock, this one gives up after
/// 2 s and goes on unlocked.
class StartLock
{
public:
    explicit StartLock(const std::string& path)
    {
        const auto folder = std::filesystem::path(path).parent_path();
        m_folder = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        constexpr int kAttempts = 200;
        for (int attempt = 0; m_folder >= 0 && attempt < kAttempts; ++attempt) {
            if (::flock(m_folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~StartLock()
    {
        if (m_folder >= 0)
            ::close(m_folder);
    }
    StartLock(const StartLock&) = delete;
    StartLock& operator=(const StartLock&) = delete;

private:
    int m_folder = -1;
};

Protocol::acceptor listenAt(asio::io_context& context, const std::string& path)
{
    constexpr std::size_t kLongestPath = 107;  // the longest path that fits into a socket address
    if (path.empty() || path.size() > kLongestPath)
        throw std::runtime_error(path + ": is not accepted as a socket; accepted: a path of 1 to " +
                                 std::to_string(kLongestPath) + " bytes");
    const StartLock lock(path);
    makeRoom(path);
    Protocol::acceptor acceptor(context, Protocol());
    ::fcntl(acceptor.native_handle(), F_SETFD, FD_CLOEXEC);  // programs that arcsim runs must not inherit it
    const mode_t before = ::umask(0177);                     // other users may not connect at any moment
    asio::error_code error;
    acceptor.bind(Protocol::endpoint(path), error);
    ::umask(before);
    if (!error) {
        acceptor.listen(asio::socket_base::max_listen_connections, error);
        if (error)
            ::unlink(path.c_str());
    }
    if (error)
        throw std::runtime_error(path + ": there can be no socket: " + error.message());
    return acceptor;
}

}  // namespace

class LineServer::Connection : public Peer
{
public:
    Connection(LineServer& server, Protocol::socket socket, unsigned number)
        : Peer(number), m_server(&server), m_socket(std::move(socket))
    {
    }

    void send(const Json& message) override;
    void close() override;
    void receive();
    bool hasSentAll() const { return m_unsent.empty(); }
    /// Does not tell the server, which is about to end.
    void drop();

private:
    std::shared_ptr<Connection> shared() { return std::static_pointer_cast<Connection>(shared_from_this()); }
    void takeLines();
    void write();
    void end();

    LineServer* m_server;  ///< null once the server is gone
    Protocol::socket m_socket;
    std::array<char, 16384> m_buffer{};
    LineBuffer m_lines{};
    std::deque<std::string> m_unsent{};
    std::size_t m_unsentBytes = 0;
    bool m_isClosing = false;
};

void LineServer::Connection::receive()
{
    m_socket.async_read_some(asio::buffer(m_buffer),
                             [self = shared()](const asio::error_code& error, std::size_t count) {
                                 if (error) {
                                     self->end();
                                     return;
                                 }
                                 self->m_lines.add(std::string_view(self->m_buffer.data(), count));
                                 self->takeLines();
                             });
}

void LineServer::Connection::takeLines()
{
    if (m_isClosing || m_server == nullptr)
        return;
    const LineTaken taken = takeLine(*this, m_lines, *m_server->m_handler);
    if (taken == LineTaken::none)
        receive();
    else if (taken == LineTaken::accepted)  // one line at a time, however many have arrived: other peers get their
        asio::post(m_socket.get_executor(), [self = shared()] { self->takeLines(); });  // turn in between
}

void LineServer::Connection::send(const Json& message)
{
    if (m_isClosing)
        return;
    std::string line = lineOf(message);
    if (m_unsentBytes + line.size() > LineServer::kMostUnsent) {
        m_isClosing = true;  // not ended here: the caller may be in the middle of sending to several peers
        asio::post(m_socket.get_executor(), [self = shared()] { self->end(); });
        return;
    }
    m_unsentBytes += line.size();
    m_unsent.push_back(std::move(line));
    if (m_unsent.size() == 1)
        write();
}

void LineServer::Connection::write()
{
    asio::async_write(m_socket, asio::buffer(m_unsent.front()),
                      [self = shared()](const asio::error_code& error, std::size_t) {
                          if (error) {
                              self->end();
                              return;
                          }
                          self->m_unsentBytes -= self->m_unsent.front().size();
                          self->m_unsent.pop_front();
                          if (!self->m_unsent.empty())
                              self->write();
                          else if (self->m_isClosing)
                              self->end();
                          else if (self->m_server != nullptr)
                              self->m_server->lookWhetherAllIsSent();
                      });
}

void LineServer::Connection::close()
{
    m_isClosing = true;
    if (m_unsent.empty())
        asio::post(m_socket.get_executor(), [self = shared()] { self->end(); });
}

void LineServer::Connection::end()
{
    m_isClosing = true;
    asio::error_code ignored;
    m_socket.close(ignored);
    if (m_server != nullptr)
        std::exchange(m_server, nullptr)->remove(*this);
}

void LineServer::Connection::drop()
{
    m_server = nullptr;
    asio::error_code ignored;
    m_socket.close(ignored);
}

LineServer::LineServer(asio::io_context& context, const std::string& path)
    : m_path(path), m_acceptor(listenAt(context, path)), m_timers(context)
{
}

void LineServer::start(PeerHandler& handler)
{
    m_handler = &handler;
    accept();
}

LineServer::~LineServer()
{
    stop();
    for (const auto& [number, peer] : m_peers)
        peer->drop();
}

void LineServer::accept()
{
    m_acceptor.async_accept([this](const asio::error_code& error, Protocol::socket socket) {
        if (error == asio::error::operation_aborted)
            return;
        if (error) {
            m_pause = m_timers.after(kAcceptPause, [this] { accept(); });
            return;
        }
        if (m_peers.size() < kMostPeers && isOwnUser(socket)) {
            const unsigned number = ++m_lastNumber;
            const auto peer = std::make_shared<Connection>(*this, std::move(socket), number);
            m_peers[number] = peer;
            peer->receive();
        }
        accept();
    });
}

void LineServer::remove(Connection& connection)
{
    const auto kept = connection.shared_from_this();  // the map may hold the last reference
    m_peers.erase(connection.number());
    m_handler->left(connection);
    lookWhetherAllIsSent();
}

void LineServer::stop()
{
    if (!m_acceptor.is_open())
        return;
    // A process that starts between closing and unlinking must not lose its socket.
    const StartLock lock(m_path);
    asio::error_code ignored;
    m_acceptor.close(ignored);
    m_timers.cancel(m_pause);
    ::unlink(m_path.c_str());
}

void LineServer::whenSent(std::function<void()> action)
{
    m_whenSent = std::move(action);
    m_timers.after(kMostSending, [this] {
        if (m_whenSent)
            std::exchange(m_whenSent, nullptr)();
    });
    // Not at once: the caller may still have an answer to send.
    asio::post(m_acceptor.get_executor(), [this] { lookWhetherAllIsSent(); });
}

void LineServer::lookWhetherAllIsSent()
{
    if (m_whenSent &&
        std::all_of(m_peers.begin(), m_peers.end(), [](const auto& peer) { return peer.second->hasSentAll(); }))
        std::exchange(m_whenSent, nullptr)();
}

}  // namespace arcsim
