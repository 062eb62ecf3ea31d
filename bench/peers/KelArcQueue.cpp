#include "peers/Name.h"
#include "peers/Peer.h"
#include "task/TaskQueue.h"

namespace bench {
namespace {

class KelArcQueue : public Peer
{
public:
    KelArcQueue() { m_queue.start(); }

    void post(Work work, void* argument) override
    {
        m_queue.addTask(
            kTaskName, [work, argument](task::ExecutionReason) { work(argument); }, std::chrono::milliseconds(0));
    }

private:
    task::TaskQueue<128, task::TaskContainer> m_queue{"Benchmark"};
};

}  // namespace

std::unique_ptr<Peer> makeKelArcQueue()
{
    return std::make_unique<KelArcQueue>();
}

}  // namespace bench
