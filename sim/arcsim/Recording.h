#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// Arguments or outputs of a call as JSON text, in the order of the function's declaration. Calls with the same text
/// share it, since a recording may have millions of calls.
class RecordedJson
{
public:
    RecordedJson() : m_text(std::make_shared<const std::string>("{}")) {}
    explicit RecordedJson(std::shared_ptr<const std::string> text) : m_text(std::move(text)) {}

    nlohmann::ordered_json value() const { return nlohmann::ordered_json::parse(*m_text); }
    const std::string& dump() const { return *m_text; }

private:
    std::shared_ptr<const std::string> m_text;
};

/// One call of a recording. Times count from its beginning.
struct RecordedCall
{
    struct End
    {
        std::chrono::microseconds at{};
        int code = 0;
        RecordedJson outputs{};
        std::chrono::microseconds took{};
    };

    unsigned number = 0;  ///< 1 for the first
    std::chrono::microseconds at{};
    int thread = 0;
    std::string_view function{};  ///< one of CallShape.h
    RecordedJson arguments{};
    std::optional<End> end{};  ///< empty if the call never returned or the recording ended first
};

/// One event as the application's handler received it.
struct RecordedEvent
{
    std::chrono::microseconds at{};
    int thread = 0;
    int id = 0;
    int length = 0;
    std::optional<std::vector<unsigned char>> data{};  ///< empty for a null pointer
    std::optional<std::chrono::microseconds> took{};   ///< empty if the handler never returned
    // Its place among the calls:
    std::size_t callsBegun = 0;             ///< the calls 1 to this number had begun
    std::size_t callsEnded = 0;             ///< this many of Recording::endOrder had ended
    std::chrono::microseconds afterCall{};  ///< time since the latest begin or end of a call
};

/// The content of a file that libArcRecord.so wrote.
struct Recording
{
    std::string utc{};
    long long pid = 0;
    std::string program{};
    std::string library{};                ///< empty when none was found
    std::vector<RecordedCall> calls{};    ///< in the order in which they began
    std::vector<unsigned> endOrder{};     ///< numbers of the calls that ended, in the order of their ends
    std::vector<RecordedEvent> events{};  ///< in order of time
};

/// An unfinished last line is ignored: the process died while writing it. Every other defect is a ScenarioError that
/// names the file, the line and what is accepted.
Recording parseRecording(const std::string& file, const std::string& text);
/// Reads a regular file of up to 1 GiB line by line. Also throws ScenarioError when it cannot be read.
Recording readRecording(const std::string& file);

}  // namespace arcsim
