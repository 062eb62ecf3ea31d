#include "kelarcctl/Results.h"

namespace kelarcctl {

void Results::add(std::string_view logLine)
{
    const std::optional<ResultLine> line = resultLineOf(logLine);
    if (!line)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_attempts.add(*line);
    m_last = Answer{*line, m_attempts.failed(), Clock::now()};
    m_byCode[line->code] = *m_last;
}

std::optional<Results::Answer> Results::last(int code) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_byCode.find(code);
    return found == m_byCode.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Results::Answer> Results::lastWhile(const std::string& runningTask) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::optional<Answer> answer = m_last;
    if (answer)
        answer->attempts = m_attempts.failedOf(runningTask);
    return answer;
}

std::string textAndCode(const ResultLine& line)
{
    return line.text + " (" + std::to_string(line.code) + ")";
}

}  // namespace kelarcctl
