#include "arcsim/Recording.h"

#include "arcsim/CallShape.h"
#include "scenario/JsonText.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>

namespace arcsim {

namespace {

using nlohmann::ordered_json;
using std::chrono::microseconds;

constexpr long long kHighestInt = std::numeric_limits<int>::max();
constexpr long long kHighestNumber = 1LL << 53U;

int wholeNumber(const JsonNode& node)
{
    return static_cast<int>(node.integer(-kHighestInt - 1, kHighestInt));
}

microseconds time(const JsonNode& line, const char* key)
{
    return microseconds(line.at(key, "a time in microseconds").integer(0, kHighestNumber));
}

/// Takes the lines one after the other.
class Reader
{
public:
    void readHeader(const JsonNode& line)
    {
        if (!line.isObject() || !line.has("recording"))
            line.refuse("the first line of a recording, {\"recording\":1,...}");
        line.requireKeys({"recording", "utc", "pid", "program", "library"});
        line.at("recording", "").integer(1, 1);
        m_recording.utc = line.at("utc", "a time").text("a time");
        m_recording.pid = line.at("pid", "a process number").integer(0, kHighestNumber);
        m_recording.program = line.at("program", "a name").text("a name");
        const JsonNode library = line.at("library", "a path or null");
        if (!library.isNull())
            m_recording.library = library.text("a path or null");
    }

    void readLine(const JsonNode& line, const std::string& text)
    {
        if (line.isObject() && line.has("call"))
            readBegin(line, text);
        else if (line.isObject() && line.has("code"))
            readEnd(line, text);
        else if (line.isObject() && line.has("event"))
            readEvent(line);
        else if (line.isObject() && line.has("handled"))
            readHandled(line);
        else
            line.refuse("an object with the key call, code, event or handled");
    }

    Recording take() { return std::move(m_recording); }

private:
    void readBegin(const JsonNode& line, const std::string& text)
    {
        line.requireKeys({"n", "us", "thread", "call", "args"});
        RecordedCall call;
        const auto next = static_cast<long long>(m_recording.calls.size()) + 1;
        const JsonNode number = line.at("n", "the number of the call");
        if (number.integer(1, kHighestInt) != next)
            number.refuse(std::to_string(next) + ", since calls are numbered in the order in which they begin");
        call.number = static_cast<unsigned>(next);
        call.at = time(line, "us");
        call.thread = threadOf(line);
        const JsonNode function = line.at("call", "");
        call.function = function.text(functionNames());
        const CallShape* const shape = findShape(call.function);
        if (shape == nullptr)
            function.refuse(functionNames());
        requireArguments(*shape, line.at("args", "an object"));
        call.arguments = ordered_json::parse(text).at("args");
        m_latest = call.at;
        m_recording.calls.push_back(std::move(call));
    }

    void readEnd(const JsonNode& line, const std::string& text)
    {
        line.requireKeys({"n", "us", "thread", "code", "out", "tookUs"});
        const JsonNode numberNode = line.at("n", "the number of the call");
        const auto number = static_cast<std::size_t>(numberNode.integer(1, kHighestInt));
        if (number > m_recording.calls.size() || m_recording.calls[number - 1].end)
            numberNode.refuse("the number of a call that has begun and not ended");
        RecordedCall& call = m_recording.calls[number - 1];
        if (threadOf(line) != call.thread)
            line.at("thread", "").refuse(std::to_string(call.thread) + ", the thread on which the call began");
        RecordedCall::End end;
        end.at = time(line, "us");
        end.code = wholeNumber(line.at("code", ""));
        requireOutputs(*findShape(call.function), line.at("out", "an object"));
        end.outputs = ordered_json::parse(text).at("out");
        end.took = time(line, "tookUs");
        m_latest = end.at;
        m_recording.endOrder.push_back(call.number);
        call.end = std::move(end);
    }

    void readEvent(const JsonNode& line)
    {
        line.requireKeys({"us", "thread", "event", "length", "data"});
        RecordedEvent event;
        event.at = time(line, "us");
        event.thread = threadOf(line);
        event.id = wholeNumber(line.at("event", ""));
        event.length = wholeNumber(line.at("length", "the length of the data"));
        const JsonNode data = line.at("data", "hexadecimal digits or null");
        if (!data.isNull()) {
            event.data = readHex(data);
            const std::size_t expected = event.length < 0 ? 0 : static_cast<std::size_t>(event.length);
            if (event.data->size() != expected)
                data.refuse(std::to_string(expected) + " bytes, as the length says");
        }
        event.callsBegun = m_recording.calls.size();
        event.callsEnded = m_recording.endOrder.size();
        event.afterCall = std::max(microseconds(0), event.at - m_latest);
        m_open[event.thread].push_back(m_recording.events.size());
        m_recording.events.push_back(std::move(event));
    }

    void readHandled(const JsonNode& line)
    {
        line.requireKeys({"us", "thread", "handled", "tookUs"});
        if (!line.at("handled", "").flag())
            line.at("handled", "").refuse("true");
        time(line, "us");
        std::vector<std::size_t>& open = m_open[threadOf(line)];
        if (open.empty())
            line.at("thread", "").refuse("a thread on which an event is being handled");
        m_recording.events[open.back()].took = time(line, "tookUs");
        open.pop_back();
    }

    static int threadOf(const JsonNode& line)
    {
        return static_cast<int>(line.at("thread", "the number of a thread").integer(1, kHighestInt));
    }

    Recording m_recording{};
    microseconds m_latest{};                           ///< beginning or end of a call
    std::map<int, std::vector<std::size_t>> m_open{};  ///< events being handled, by thread
};

std::string shortened(const std::string& text)
{
    return text.size() > 60 ? text.substr(0, 60) + "..." : text;
}

}  // namespace

Recording parseRecording(const std::string& file, const std::string& text)
{
    Reader reader;
    std::size_t number = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const std::string place = file + ':' + std::to_string(++number);
        begin = end + 1;
        if (!nlohmann::json::accept(line)) {
            if (end == text.size() && number > 1)
                break;
            throw ScenarioError(place + ": " + shortened(line) + " is not accepted; accepted: a JSON object");
        }
        const nlohmann::json document = parseJson(file, line, number);
        const JsonNode node(place, document);
        if (number == 1)
            reader.readHeader(node);
        else
            reader.readLine(node, line);
    }
    if (number == 0)
        throw ScenarioError(file + ": is empty; accepted: a recording, as libArcRecord.so writes it");
    return reader.take();
}

Recording readRecording(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    stream.peek();  // tells a file that cannot be read from one that is empty
    if (!stream.is_open() || stream.bad())
        throw ScenarioError(file + ": cannot be read: " + std::strerror(errno) +
                            "; accepted: the name of a recording, as libArcRecord.so writes it");
    std::ostringstream content;
    content << stream.rdbuf();
    return parseRecording(file, content.str());
}

}  // namespace arcsim
