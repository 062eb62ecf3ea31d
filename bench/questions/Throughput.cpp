// Tasks per second with 1, 2 and 4 threads that hand over. Each thread keeps at most its share of 128 tasks unfinished:
// at that limit it sleeps until half of them are done.

#include "peers/Peer.h"
#include "questions/Measure.h"
#include "questions/Questions.h"

#include <atomic>
#include <semaphore.h>
#include <thread>

namespace bench {
namespace {

constexpr std::uint32_t kBound = 128;
constexpr std::uint32_t kThings = 24'000;  // of all threads

/// How many tasks one thread has handed over, and how many of them are done.
class Window
{
public:
    explicit Window(std::uint32_t size) : m_size(size) { sem_init(&m_wake, 0, 0); }
    ~Window() { sem_destroy(&m_wake); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// On the handing thread, before each thing.
    void enter()
    {
        if (m_entered - m_done.load(std::memory_order_relaxed) >= m_size)
            awaitDone(m_entered - m_size / 2);
        ++m_entered;
    }
    void awaitAll() { awaitDone(m_entered); }

    /// On the worker, for each thing.
    void leave()
    {
        const std::uint32_t done = m_done.fetch_add(1) + 1;
        if (m_wakeAt.load() == done && m_wakeAt.exchange(0) == done)
            sem_post(&m_wake);
    }

private:
    void awaitDone(std::uint32_t count)
    {
        m_wakeAt = count;
        // Done already: the worker either has woken us or no longer will.
        if (m_done.load() >= count && m_wakeAt.exchange(0) == count)
            return;
        sem_wait(&m_wake);
    }

    const std::uint32_t m_size;
    std::uint32_t m_entered = 0;
    std::atomic<std::uint32_t> m_done{0};
    std::atomic<std::uint32_t> m_wakeAt{0};
    sem_t m_wake;
};

void handOver(Peer& peer, std::uint32_t things, std::uint32_t share)
{
    Window window(share);
    for (std::uint32_t i = 0; i < things; ++i) {
        window.enter();
        peer.post([](void* passed) { static_cast<Window*>(passed)->leave(); }, &window);
    }
    window.awaitAll();
}

double millionsPerSecond(Peer& peer, std::uint32_t producers)
{
    const std::int64_t begin = nowNs();
    std::vector<std::thread> threads;
    for (std::uint32_t i = 1; i < producers; ++i)
        threads.emplace_back(handOver, std::ref(peer), kThings / producers, kBound / producers);
    handOver(peer, kThings / producers, kBound / producers);
    for (std::thread& thread : threads)
        thread.join();
    return 1000. * kThings / static_cast<double>(nowNs() - begin);
}

Table measured(const Effort& effort, const std::string& question, const std::string& note)
{
    std::vector<std::unique_ptr<Peer>> peers;
    std::vector<Contender> contenders;
    for (const PeerKind& kind : kPeers)
        if (kind.isQueue) {
            peers.push_back(kind.make());
            contenders.push_back({kind.name, [peer = peers.back().get()] {
                                      return std::vector<double>{millionsPerSecond(*peer, 1),
                                                                 millionsPerSecond(*peer, 2),
                                                                 millionsPerSecond(*peer, 4)};
                                  }});
        }
    Rounds rounds(std::move(contenders), effort.seed);
    rounds.run(effort.rounds);
    return comparison(question, note + " Millions a second; at most 128 on the way. More is better.",
                      {{"1 producer", 2}, {"2 producers", 2}, {"4 producers", 2}}, rounds);
}

Table onOneProcessor(const Effort& effort)
{
    const OneProcessor pinned;
    return measured(effort, "Throughput, one processor", "All threads on one processor.");
}

}  // namespace

std::vector<Table> throughput(const Effort& effort)
{
    return {measured(effort, "Throughput, all processors", "Threads where the system puts them."),
            onOneProcessor(effort)};
}

}  // namespace bench
