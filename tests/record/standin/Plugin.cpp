// A part that a program loads while it runs, and that calls the client library while it is being loaded. Another thread
// makes its first call just then.

#include "arc/ArcRilD.h"

#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

/// Whether a thread of this process sleeps, apart from the calling one.
bool anotherSleeps(pid_t thread)
{
    std::ifstream stream("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(stream, text);
    const std::size_t name = text.rfind(')');
    return name != std::string::npos && text.compare(name, 3, ") S") == 0;
}

__attribute__((constructor)) void callWhileLoading()
{
    static pid_t other = 0;
    std::thread([] {
        __atomic_store_n(&other, gettid(), __ATOMIC_SEQ_CST);
        ARC_StopGNSS();
    }).detach();
    // It waits for this part to be loaded, since it has to load the real library.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while ((__atomic_load_n(&other, __ATOMIC_SEQ_CST) == 0 || !anotherSleeps(other)) &&
           std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ARC_Open();
}

}  // namespace
