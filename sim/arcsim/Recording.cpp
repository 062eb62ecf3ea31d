#include "arcsim/Recording.h"

#include "arcsim/CallShape.h"
#include "scenario/JsonText.h"
#include "support/Files.h"
#include "support/Nesting.h"

#include <array>
#include <functional>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>

namespace arcsim {

namespace {

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

/// Builds a recording from its lines, one after the other.
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

    void readLine(const JsonNode& line, const nlohmann::json& document)
    {
        if (line.isObject() && line.has("call"))
            readBegin(line, document);
        else if (line.isObject() && line.has("code"))
            readEnd(line, document);
        else if (line.isObject() && line.has("event"))
            readEvent(line);
        else if (line.isObject() && line.has("handled"))
            readHandled(line);
        else
            line.refuse("an object with the key call, code, event or handled");
    }

    Recording take() { return std::move(m_recording); }

private:
    void readBegin(const JsonNode& line, const nlohmann::json& document)
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
        const CallShape* const shape = line.at("call", "").isText() ? findShape(document["call"]) : nullptr;
        if (shape == nullptr)
            function.refuse(functionNames());
        call.function = shape->function;
        requireArguments(*shape, line.at("args", "an object"));
        call.arguments = shared(textOf(shape->arguments, document["args"]));
        m_latest = call.at;
        m_recording.calls.push_back(std::move(call));
    }

    void readEnd(const JsonNode& line, const nlohmann::json& document)
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
        const CallShape& shape = *findShape(std::string(call.function));
        requireOutputs(shape, line.at("out", "an object"));
        end.outputs = shared(textOf(shape.outputs, document["out"]));
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

    RecordedJson shared(const std::string& text)
    {
        constexpr std::size_t kMostShared = 4096;  // texts after these rarely repeat
        const auto known = m_texts.find(text);
        if (known != m_texts.end())
            return RecordedJson(known->second);
        const auto made = std::make_shared<const std::string>(text);
        if (m_texts.size() < kMostShared)
            m_texts[text] = made;
        return RecordedJson(made);
    }

    static int threadOf(const JsonNode& line)
    {
        return static_cast<int>(line.at("thread", "the number of a thread").integer(1, kHighestInt));
    }

    Recording m_recording{};
    microseconds m_latest{};                           ///< beginning or end of a call
    std::map<int, std::vector<std::size_t>> m_open{};  ///< events that are being handled, by thread
    std::unordered_map<std::string, std::shared_ptr<const std::string>> m_texts{};
};

std::string shortened(const std::string& text)
{
    return text.size() > 60 ? text.substr(0, 60) + "..." : text;
}

}  // namespace

namespace {

/// Splits a text that comes in pieces into lines. Holds one piece and one line of limited length.
class Lines
{
public:
    /// The next piece; empty at the end.
    using Source = std::function<std::string_view()>;
    Lines(std::string file, Source source) : m_file(std::move(file)), m_source(std::move(source)) {}

    /// The next line without its line end; false when there are no more.
    bool next(std::string& line)
    {
        line.clear();
        while (!m_piece.empty() || !(m_piece = m_source()).empty()) {
            const std::size_t end = m_piece.find('\n');
            line += m_piece.substr(0, end);
            if (line.size() > kLargestFile)
                throw ScenarioError(m_file + ": a longer line is not accepted; accepted: at most " +
                                    std::to_string(kLargestFile) + " bytes");
            m_isWhole = end != std::string_view::npos;
            m_piece.remove_prefix(m_isWhole ? end + 1 : m_piece.size());
            if (m_isWhole)
                return true;
        }
        return !line.empty();
    }
    /// Whether the latest line had a line end.
    bool isWhole() const { return m_isWhole; }

private:
    const std::string m_file;
    const Source m_source;
    std::string_view m_piece{};
    bool m_isWhole = true;
};

std::size_t membersOf(const nlohmann::json& value)
{
    std::size_t count = value.is_object() ? value.size() : 0;
    if (value.is_structured())
        for (const nlohmann::json& each : value)
            count += membersOf(each);
    return count;
}

/// The number of object members in a JSON text: its colons outside strings.
std::size_t membersIn(std::string_view text)
{
    std::size_t count = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (inString && text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            inString = !inString;
        else if (!inString && text[i] == ':')
            ++count;
    }
    return count;
}

/// Same result as parseJson(), but faster for correct text. A duplicate key shows as a missing member.
nlohmann::json parseLine(const std::string& file, const std::string& line, std::size_t number)
{
    if (line.find('\0') == std::string::npos && support::nestingOf(line) <= support::kDeepestNesting) {
        nlohmann::json document = nlohmann::json::parse(line, nullptr, false);
        if (!document.is_discarded() && membersOf(document) == membersIn(line))
            return document;
    }
    return parseJson(file, line, number);
}

Recording readLines(const std::string& file, const Lines::Source& source)
{
    Reader reader;
    Lines lines(file, source);
    std::string line;
    std::size_t number = 0;
    while (lines.next(line)) {
        const std::string place = file + ':' + std::to_string(++number);
        nlohmann::json document;
        try {
            document = parseLine(file, line, number);
        } catch (const ScenarioError&) {
            if (support::nestingOf(line) > support::kDeepestNesting || nlohmann::json::accept(line))
                throw;  // valid JSON, but not accepted
            if (!lines.isWhole() && number > 1)
                break;
            throw ScenarioError(place + ": " + shortened(line) + " is not accepted; accepted: a JSON object");
        }
        const JsonNode node(place, document);
        if (number == 1)
            reader.readHeader(node);
        else
            reader.readLine(node, document);
    }
    if (number == 0)
        throw ScenarioError(file + ": is empty; accepted: a recording, as libArcRecord.so writes it");
    return reader.take();
}

}  // namespace

Recording parseRecording(const std::string& file, const std::string& text)
{
    std::string_view left = text;
    return readLines(file, [&] { return std::exchange(left, std::string_view()); });
}

Recording readRecording(const std::string& file)
{
    constexpr std::size_t kLargestRecording = 1UL << 30U;
    try {
        support::InputFile input(file, {kLargestRecording, "the name of a recording, as libArcRecord.so writes it"});
        std::array<char, 65536> piece{};
        return readLines(file, [&] { return std::string_view(piece.data(), input.read(piece.data(), piece.size())); });
    } catch (const support::FileError& error) {
        throw ScenarioError(error.what());
    }
}

}  // namespace arcsim
