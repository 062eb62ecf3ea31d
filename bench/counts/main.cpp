// Gives one worker batches of 100 things to do, so that instructions, system calls and allocations of one of them can
// be counted (bench/check_counts.py):
//
//   queue      the queue alone, with a name and a closure that need no memory of their own
//   task       a task of the queue with a name of 59 characters and a closure of 48 bytes
//   request    a typed request, from call to callback, with its result line; the client library answers at once
//   asio       asio with a pending steady_timer; the handler owns what `task` owns
//
// While a batch is handed over, the worker is held in a body before it: all of the batch waits, nobody meets anybody at
// a lock, and the counts repeat. Prints the allocations of one thing; `environment` prints what the counts depend on.

#include "counts/Allocations.h"
#include "counts/Subjects.h"

#include <cstdio>
#include <cstdlib>
#include <gnu/libc-version.h>
#include <semaphore.h>
#include <string>

namespace {

constexpr int kBatch = 100;  // with the first and the last body still below the queue's limit

struct Kind
{
    const char* name;
    std::unique_ptr<bench::Subject> (*make)();
};

constexpr Kind kKinds[] = {
    {"queue", bench::makeQueue},
    {"task", bench::makeTask},
    {"request", bench::makeRequest},
    {"asio", bench::makeAsio},
};

class Semaphore
{
public:
    Semaphore() { sem_init(&m_semaphore, 0, 0); }
    ~Semaphore() { sem_destroy(&m_semaphore); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    void post() { sem_post(&m_semaphore); }
    void wait() { sem_wait(&m_semaphore); }

private:
    sem_t m_semaphore;
};

/// Allocations from the first thing handed over to the last one done.
std::uint64_t runBatch(bench::Subject& subject)
{
    Semaphore held;
    Semaphore go;
    Semaphore done;
    subject.addBody([&] {
        held.post();
        go.wait();
    });
    held.wait();
    const std::uint64_t before = bench::allocations();
    for (int i = 0; i < kBatch; ++i)
        subject.addCounted();
    std::uint64_t after = bench::allocations();
    subject.addBody([&] {
        after += bench::allocations();
        done.post();
    });
    const std::uint64_t beforeRun = bench::allocations();
    go.post();
    done.wait();
    return after - before - beforeRun;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "environment") {
        std::printf("compiler %s, C library %s\n", __VERSION__, gnu_get_libc_version());
        return 0;
    }
    const int batches = argc == 3 ? std::atoi(argv[2]) : 0;
    for (const Kind& kind : kKinds)
        if (batches > 0 && std::string(argv[1]) == kind.name) {
            const auto subject = kind.make();
            std::uint64_t allocations = 0;
            for (int i = 0; i < batches; ++i)
                allocations = runBatch(*subject);  // the last batch: one-time allocations are done by then
            std::printf("%.2f\n", static_cast<double>(allocations) / kBatch);
            return 0;
        }
    std::fprintf(stderr, "usage: kelarc_counts queue|task|request|asio|environment BATCHES\n");
    return 2;
}
