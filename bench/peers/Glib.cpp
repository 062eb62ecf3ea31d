#include "peers/Peer.h"

#include <glib.h>
#include <thread>

namespace bench {
namespace {

class Glib : public Peer
{
public:
    Glib()
    {
        GSource* const timer = g_timeout_source_new_seconds(3600);
        g_source_set_callback(
            timer, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
        g_source_attach(timer, m_context);
        g_source_unref(timer);
        m_worker = std::thread([this] {
            g_main_context_push_thread_default(m_context);
            g_main_loop_run(m_loop);
            g_main_context_pop_thread_default(m_context);
        });
    }
    ~Glib() override
    {
        post([](void* loop) { g_main_loop_quit(static_cast<GMainLoop*>(loop)); }, m_loop);
        m_worker.join();
        g_main_loop_unref(m_loop);
        g_main_context_unref(m_context);
    }

    void post(Work work, void* argument) override
    {
        g_main_context_invoke_full(
            m_context, G_PRIORITY_DEFAULT,
            [](gpointer entry) -> gboolean {
                static_cast<Entry*>(entry)->work(static_cast<Entry*>(entry)->argument);
                return G_SOURCE_REMOVE;
            },
            new Entry{work, argument}, [](gpointer entry) { delete static_cast<Entry*>(entry); });
    }

private:
    struct Entry
    {
        Work work;
        void* argument;
    };

    GMainContext* const m_context = g_main_context_new();
    GMainLoop* const m_loop = g_main_loop_new(m_context, FALSE);
    std::thread m_worker;
};

}  // namespace

std::unique_ptr<Peer> makeGlib()
{
    return std::make_unique<Glib>();
}

}  // namespace bench
