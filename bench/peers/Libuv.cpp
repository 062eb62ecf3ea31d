// libuv's wake-up from another thread carries no data, and several may be merged into one. So every user adds a list
// and a mutex.

#include "peers/Peer.h"

#include <mutex>
#include <thread>
#include <uv.h>
#include <vector>

namespace bench {
namespace {

class Libuv : public Peer
{
public:
    Libuv()
    {
        uv_loop_init(&m_loop);
        m_async.data = this;
        uv_async_init(&m_loop, &m_async,
                      [](uv_async_t* handle) { static_cast<Libuv*>(handle->data)->takeEverything(); });
        uv_timer_init(&m_loop, &m_timer);
        uv_timer_start(
            &m_timer, [](uv_timer_t*) {}, 3'600'000, 3'600'000);
        m_worker = std::thread([this] { uv_run(&m_loop, UV_RUN_DEFAULT); });
    }
    ~Libuv() override
    {
        post(
            [](void* self) {
                auto* const libuv = static_cast<Libuv*>(self);
                uv_close(reinterpret_cast<uv_handle_t*>(&libuv->m_async), nullptr);
                uv_close(reinterpret_cast<uv_handle_t*>(&libuv->m_timer), nullptr);
            },
            this);
        m_worker.join();
        uv_loop_close(&m_loop);
    }

    void post(Work work, void* argument) override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_incoming.push_back({work, argument});
        }
        uv_async_send(&m_async);
    }

private:
    struct Entry
    {
        Work work;
        void* argument;
    };

    void takeEverything()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_taken.swap(m_incoming);
        }
        for (const Entry& entry : m_taken)
            entry.work(entry.argument);
        m_taken.clear();
    }

    uv_loop_t m_loop{};
    uv_async_t m_async{};
    uv_timer_t m_timer{};
    std::mutex m_mutex;
    std::vector<Entry> m_incoming;
    std::vector<Entry> m_taken;
    std::thread m_worker;
};

}  // namespace

std::unique_ptr<Peer> makeLibuv()
{
    return std::make_unique<Libuv>();
}

}  // namespace bench
