#pragma once

#include "kelarcctl/CommandLine.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kelarcctl {

/// When a command that goes on by itself ends; else Ctrl-C ends it.
struct StreamEnd
{
    std::chrono::milliseconds after{0};
    unsigned results = 0;
};

/// The options --for and --count; with `flag` only where that is given.
std::shared_ptr<StreamEnd> addStreamEnd(CLI::App& command, CLI::Option* flag = nullptr);

/// Results that come on the library's threads, to be put out by the main thread. Shared with callbacks, which may come
/// late.
class Stream
{
public:
    /// From any thread.
    void put(Json json, std::string text);
    /// Puts out what comes, until the end; answers the exit code. Throws Failure when the user does not want to wait.
    int run(Session& session, const Output& output, const StreamEnd& end, const std::string& what);

private:
    std::vector<std::pair<Json, std::string>> take();

    Bell m_bell;
    std::mutex m_mutex;
    std::vector<std::pair<Json, std::string>> m_results;  ///< guarded by m_mutex
};

}  // namespace kelarcctl
