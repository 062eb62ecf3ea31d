#include "kelarcctl/monitor/ResultLine.h"

#include <charconv>

namespace kelarcctl {

namespace {

template <typename Number>
std::optional<Number> wholeNumberOf(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

}  // namespace

std::optional<ResultLine> resultLineOf(std::string_view logLine)
{
    constexpr std::string_view kBeforeRetries = ": [";
    constexpr std::string_view kBeforeTime = " took ";
    constexpr std::string_view kBeforeText = " ms: ";
    const std::size_t begin = logLine.find(kBeforeRetries);
    const std::size_t bracket = logLine.find("] ", begin);
    // Parsed from the end, since the call's text may contain anything.
    const std::size_t text = logLine.rfind(kBeforeText);
    const std::size_t time = logLine.rfind(kBeforeTime, text);
    const std::size_t code = logLine.rfind(" (");
    if (begin == std::string_view::npos || bracket == std::string_view::npos || text == std::string_view::npos ||
        time == std::string_view::npos || code == std::string_view::npos || time < bracket || code < text ||
        logLine.back() != ')')
        return std::nullopt;
    const auto between = [&](std::size_t from, std::size_t until) { return logLine.substr(from, until - from); };
    const auto retries = wholeNumberOf<int>(between(begin + kBeforeRetries.size(), bracket));
    const auto took = wholeNumberOf<long long>(between(time + kBeforeTime.size(), text));
    const auto number = wholeNumberOf<int>(between(code + 2, logLine.size() - 1));
    if (!retries || !took || !number)
        return std::nullopt;
    return ResultLine{*retries, std::string(between(bracket + 2, time)), *took,
                      std::string(between(text + kBeforeText.size(), code)), *number};
}

std::vector<std::string> queuedTasksOf(const std::string& tasks)
{
    constexpr std::string_view kBeforeName = ", name: '";
    constexpr std::string_view kAfterName = "', isDelayed: ";
    std::vector<std::string> names;
    for (std::size_t begin = tasks.find(kBeforeName); begin != std::string::npos;
         begin = tasks.find(kBeforeName, begin)) {
        begin += kBeforeName.size();
        const std::size_t end = tasks.find(kAfterName, begin);
        if (end == std::string::npos)
            break;
        names.push_back(tasks.substr(begin, end - begin));
        begin = end;
    }
    return names;
}

void Attempts::add(const ResultLine& line)
{
    // If the retries were used up, or have grown again, the earlier attempts belong to a request that has ended.
    const bool goesOn = line.call == m_last.call && m_last.code != 0 && m_last.retriesLeft != 0 &&
                        line.retriesLeft <= m_last.retriesLeft;
    m_failed = line.code == 0 ? 0 : goesOn ? m_failed + 1 : 1;
    m_last = line;
}

int Attempts::failedOf(const std::string& runningTask) const
{
    constexpr std::string_view kBeforeCall = ": ";
    constexpr std::string_view kNoArguments = "()";
    const std::size_t begin = runningTask.find(kBeforeCall);
    if (begin == std::string::npos || m_last.retriesLeft == 0)
        return 0;
    const std::string_view name = std::string_view(runningTask).substr(begin + kBeforeCall.size());
    const std::string_view call = m_last.call;
    // One task's name lacks the arguments that its result line has.
    const bool hasNoArguments = name.size() > kNoArguments.size() && name.substr(name.size() - 2) == kNoArguments;
    const bool isIts =
        name == call || (hasNoArguments && call.substr(0, name.size() - 1) == name.substr(0, name.size() - 1));
    return isIts ? m_failed : 0;
}

}  // namespace kelarcctl
