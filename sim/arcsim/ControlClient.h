#pragma once

#include "arcsim/Json.h"
#include "arcsim/SocketPath.h"
#include "protocol/LineBuffer.h"

#include <chrono>
#include <stdexcept>
#include <string>

namespace arcsim::program {

/// A control that was not carried out, or may not have been.
class ControlFailure : public std::runtime_error
{
public:
    /// `jsonText`: the reason, encoded as texts on the socket are.
    ControlFailure(int exitCode, const std::string& jsonText) : std::runtime_error(jsonText), m_exitCode(exitCode) {}
    int exitCode() const { return m_exitCode; }

private:
    int m_exitCode;
};

/// A connection to the daemon that sends controls one after the other. Blocks, but never longer than `timeout` after
/// construction. Every failure is a ControlFailure with its exit code.
class ControlClient
{
public:
    /// Connects. At the default path, only a daemon of this user or of root is accepted: another user could have
    /// created the socket first.
    ControlClient(const SocketPath& path, std::chrono::milliseconds timeout);
    ~ControlClient();
    ControlClient(const ControlClient&) = delete;
    ControlClient& operator=(const ControlClient&) = delete;

    /// Sends one control (without id) and waits for its answer. Returns the result, an object.
    Json ask(const Json& control);
    /// Waits until the daemon has hung up.
    void waitForEnd();

private:
    void connect();
    void requireOwn() const;
    void send(const std::string& line);
    std::string nextLine();
    bool receive();
    void waitFor(short events) const;
    Json parsed(const std::string& line) const;
    [[noreturn]] void failTimeout() const;
    [[noreturn]] void failStranger(const std::string& line) const;

    const std::string m_socketPath;
    const std::chrono::milliseconds m_timeout;
    const std::chrono::steady_clock::time_point m_deadline;
    int m_socket = -1;
    std::int64_t m_lastId = 0;
    const char* m_missing = "did not answer";  ///< the message when the time is up
    std::string m_received{};                  ///< bytes after the last complete line
};

}  // namespace arcsim::program
