#pragma once

#include "kelarcctl/CommandLine.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kelarcctl {

/// The end condition of a continuous command; without one, Ctrl-C ends it.
struct StreamEnd
{
    std::chrono::milliseconds after{0};
    unsigned results = 0;
};

/// Adds the options --for and --count; if `flag` is given, they are accepted only together with it.
std::shared_ptr<StreamEnd> addStreamEnd(CLI::App& command, CLI::Option* flag = nullptr);

/// Passes results from the library's threads to the main thread, which prints them. Shared with callbacks, which may
/// run late.
class Stream
{
public:
    /// May be called from any thread.
    void put(Json json, std::string text);
    /// Prints results until the end; returns the exit code. Throws Failure when the user interrupts.
    int run(Session& session, const Output& output, const StreamEnd& end, const std::string& what);

private:
    std::vector<std::pair<Json, std::string>> take();

    Bell m_bell;
    std::mutex m_mutex;
    std::vector<std::pair<Json, std::string>> m_results;  ///< guarded by m_mutex
};

}  // namespace kelarcctl
