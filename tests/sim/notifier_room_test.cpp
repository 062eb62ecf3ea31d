// Events that wait for a notification handler that does not return.

#include "client/Notifier.h"
#include "sim/model_support.h"

#include <atomic>

namespace {

using arcsim::Notifier;
using model_test::Signal;

std::atomic<std::size_t> g_handled{0};
Signal* g_inside = nullptr;
Signal* g_release = nullptr;

/// The first event keeps it.
void handle(int id, void*, int)
{
    if (id == 1) {
        g_inside->set();
        g_release->wait();
    }
    ++g_handled;
}

class AStuckHandler : public testing::Test
{
protected:
    AStuckHandler()
    {
        g_handled = 0;
        g_inside = &m_inside;
        g_release = &m_release;
        m_notifier.setHandler(handle);
        m_notifier.queue({1, {}});
        EXPECT_TRUE(m_inside.wait());
    }
    ~AStuckHandler() override { m_notifier.reset(); }

    /// How many of these come to the handler once it goes on.
    std::size_t handledOf(std::size_t count, std::size_t payloadBytes)
    {
        for (std::size_t i = 0; i < count; ++i)
            m_notifier.queue({2, std::vector<unsigned char>(payloadBytes)});
        m_release.set();
        EXPECT_TRUE(m_notifier.deliver(3, nullptr, 0));  // behind all that wait
        return g_handled - 2;
    }

    Signal m_inside{};
    Signal m_release{};
    Notifier& m_notifier = *new Notifier([] { return Notifier::Due{}; });  // its thread lives as long as the process
};

TEST_F(AStuckHandler, FindsAsManyEventsAsHaveRoom)
{
    EXPECT_EQ(handledOf(400'010, 0), 400'000U);
}

TEST_F(AStuckHandler, FindsAsManyBytesAsHaveRoom)
{
    EXPECT_EQ(handledOf(1000, 32'000), 524U) << "16 MiB";
    m_notifier.queue({2, {}});
    EXPECT_TRUE(m_notifier.deliver(3, nullptr, 0));
    EXPECT_EQ(g_handled, 524U + 4) << "there is room again";
}

}  // namespace
