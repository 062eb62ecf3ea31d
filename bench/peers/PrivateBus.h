#pragma once

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>

namespace bench {

/// A private D-Bus daemon and, in another process, a service behind it. Shows the cost of a request to a modem's daemon
/// before that daemon does anything.
class PrivateBus
{
public:
    /// Starts both; throws std::runtime_error when there is no dbus-daemon.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Asks the service for a setting; the answer arrives on the connection's own thread.
    void ask(const std::string& key, std::function<void(const std::string&)> answer);

private:
    struct Client;

    pid_t m_daemon = -1;
    pid_t m_service = -1;
    std::unique_ptr<Client> m_client;
};

}  // namespace bench
