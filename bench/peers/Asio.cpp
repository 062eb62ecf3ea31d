// asio as a queue with delays: a steady_timer is pending, so the loop has a timer to manage.

#include "peers/Name.h"
#include "peers/Peer.h"

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <string>
#include <thread>

namespace bench {
namespace {

class Asio : public Peer
{
public:
    Asio()
    {
        m_timer.async_wait([](const asio::error_code&) {});
        m_worker = std::thread([this] { m_context.run(); });
    }
    ~Asio() override
    {
        m_context.stop();
        m_worker.join();
    }

    void post(Work work, void* argument) override
    {
        asio::post(m_context, [work, argument] { work(argument); });
    }

protected:
    asio::io_context& context() { return m_context; }

private:
    asio::io_context m_context{1};
    asio::steady_timer m_timer{m_context, std::chrono::hours(1)};
    std::thread m_worker;
};

class AsioWithName : public Asio
{
public:
    void post(Work work, void* argument) override
    {
        asio::post(context(), [work, argument, name = std::string(kTaskName)] { work(argument); });
    }
};

}  // namespace

std::unique_ptr<Peer> makeAsio()
{
    return std::make_unique<Asio>();
}

std::unique_ptr<Peer> makeAsioWithName()
{
    return std::make_unique<AsioWithName>();
}

}  // namespace bench
