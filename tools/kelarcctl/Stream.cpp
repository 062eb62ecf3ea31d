#include "kelarcctl/Stream.h"

#include "kelarcctl/ExitCode.h"

namespace kelarcctl {

using std::chrono::milliseconds;

std::shared_ptr<StreamEnd> addStreamEnd(CLI::App& command, CLI::Option* flag)
{
    auto end = std::make_shared<StreamEnd>();
    CLI::Option& after = addTime(command, "--for", "End after this time; else Ctrl-C ends it",
                                 [end](milliseconds time) { end->after = time; });
    CLI::Option& count = *command.add_option("--count", end->results, "End after so many results")->option_text("N");
    acceptWhole(count, 1, 999'999'999);
    for (CLI::Option* const option : {&after, &count})
        if (flag != nullptr)
            option->needs(flag);
    return end;
}

void Stream::put(Json json, std::string text)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_results.emplace_back(std::move(json), std::move(text));
    }
    m_bell.wake();
}

std::vector<std::pair<Json, std::string>> Stream::take()
{
    m_bell.quiet();  // reset before looking, so that later results wake this thread again
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_results, {});
}

int Stream::run(Session& session, const Output& output, const StreamEnd& end, const std::string& what)
{
    constexpr std::chrono::hours kVeryLong(24 * 365);
    const auto until = Session::Clock::now() + (end.after.count() > 0 ? end.after : milliseconds(kVeryLong));
    unsigned results = 0;
    while (session.wait(m_bell, until, what)) {
        for (const auto& [json, text] : take()) {
            output.result(json, text);
            if (++results == end.results)
                return kExitOk;
        }
        if (!Output::finish())
            return kExitRefused;  // the reader of the results has gone
    }
    return kExitOk;
}

}  // namespace kelarcctl
