#include "peers/PrivateBus.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sdbus-c++/sdbus-c++.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

constexpr const char* kService = "example.Modem";
constexpr const char* kObject = "/modem";
constexpr const char* kInterface = "example.Modem";

/// Runs `body` in a process that ends with this one.
template <typename Body>
pid_t inAnotherProcess(Body body)
{
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("no process for the private bus");
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        body();
        _exit(1);
    }
    return child;
}

std::string readLine(int descriptor)
{
    std::string line;
    for (char next = 0; read(descriptor, &next, 1) == 1 && next != '\n';)
        line += next;
    return line;
}

void serve(const std::string& address, int ready)
{
    const auto connection = sdbus::createSessionBusConnectionWithAddress(address);
    connection->requestName(kService);
    const auto object = sdbus::createObject(*connection, kObject);
    object->registerMethod("Get").onInterface(kInterface).implementedAs([](const std::string&) {
        return std::string("\"15\"");
    });
    object->finishRegistration();
    if (write(ready, "\n", 1) == 1)
        connection->enterEventLoop();
}

}  // namespace

struct PrivateBus::Client
{
    std::unique_ptr<sdbus::IConnection> connection;
    std::unique_ptr<sdbus::IProxy> proxy;
};

PrivateBus::PrivateBus()
{
    int address[2];
    int ready[2];
    if (pipe(address) != 0 || pipe(ready) != 0)
        throw std::runtime_error("no pipe for the private bus");
    m_daemon = inAnotherProcess([&] {
        close(address[0]);
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);  // it complains about limits that it may not raise
        const std::string print = "--print-address=" + std::to_string(address[1]);
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog", print.c_str(),
               nullptr);
    });
    close(address[1]);
    const std::string where = readLine(address[0]);
    close(address[0]);
    if (where.empty())
        throw std::runtime_error("dbus-daemon did not start");

    m_service = inAnotherProcess([&] { serve(where, ready[1]); });
    close(ready[1]);
    readLine(ready[0]);
    close(ready[0]);

    m_client = std::make_unique<Client>();
    m_client->connection = sdbus::createSessionBusConnectionWithAddress(where);
    m_client->proxy = sdbus::createProxy(*m_client->connection, kService, kObject);
    m_client->proxy->finishRegistration();
    m_client->connection->enterEventLoopAsync();
}

PrivateBus::~PrivateBus()
{
    m_client->connection->leaveEventLoop();
    m_client.reset();
    for (const pid_t child : {m_service, m_daemon}) {
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
    }
}

void PrivateBus::ask(const std::string& key, std::function<void(const std::string&)> answer)
{
    m_client->proxy->callMethodAsync("Get")
        .onInterface(kInterface)
        .withArguments(key)
        .uponReplyInvoke(
            [answer = std::move(answer)](const sdbus::Error*, const std::string& value) { answer(value); });
}

}  // namespace bench
