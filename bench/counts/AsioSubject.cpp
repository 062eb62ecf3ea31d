#include "counts/Subjects.h"
#include "peers/Name.h"

#include <array>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <string>
#include <thread>

namespace bench {
namespace {

class AsioSubject : public Subject
{
public:
    AsioSubject()
    {
        m_timer.async_wait([](const asio::error_code&) {});
        m_worker = std::thread([this] { m_context.run(); });
    }
    ~AsioSubject() override
    {
        m_context.stop();
        m_worker.join();
    }

    void addBody(std::function<void()> body) override { asio::post(m_context, std::move(body)); }
    void addCounted() override
    {
        asio::post(m_context, [this, name = std::string(kTaskName), captured = std::array<char, 40>{}] {
            countWith(name, captured);
        });
    }

private:
    void countWith(const std::string&, const std::array<char, 40>&) { ++m_ran; }

    unsigned m_ran = 0;
    asio::io_context m_context{1};
    asio::steady_timer m_timer{m_context, std::chrono::hours(1)};
    std::thread m_worker;
};

}  // namespace

std::unique_ptr<Subject> makeAsio()
{
    return std::make_unique<AsioSubject>();
}

}  // namespace bench
