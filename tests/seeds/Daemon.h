#pragma once

// The daemon in this process, on a thread of its own, where the test decides what time it is and when it dies.

#include "arcsim/ModemService.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace seeds {

/// One connection to the daemon that says and hears lines. It waits for 30 seconds at the most.
class Conversation
{
public:
    explicit Conversation(const std::string& socket);
    ~Conversation();
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    void say(const std::string& bytes) const;
    /// Throws when the other side has hung up.
    arcsim::Json hear();

private:
    int m_descriptor;
    std::string m_heard{};
};

/// What `arcsim serve --time virtual` serves. The clock stands for its thread, so that time passes by calls and by the
/// control `advance` alone: how fast this machine is decides nothing.
class Daemon
{
public:
    Daemon(std::string socket, bool hasLatencies);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    /// Where the client library of this process looks for it.
    static const std::string& socketOfThisProcess();

    bool isServing() const { return m_thread.joinable(); }
    void serve();
    /// As by SIGKILL: the files beside the socket, and the socket itself, stay as they are.
    void kill() { end(true); }
    /// As by SIGTERM: they go.
    void stop() { end(false); }
    /// The result. Throws when the control is refused.
    arcsim::Json control(const std::string& name, const std::string& members = "");
    std::string output() const { return m_socket + ".nmea"; }

private:
    void run(const std::function<void(asio::io_context*, std::string)>& started);
    void end(bool isKilled);

    const std::string m_socket;
    const bool m_hasLatencies;
    asio::io_context* m_context = nullptr;  ///< of the thread
    std::atomic<bool> m_isKilled{false};
    std::thread m_thread{};
    std::unique_ptr<Conversation> m_control{};
};

}  // namespace seeds
