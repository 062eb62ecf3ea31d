#include "arcsim/Memory.h"

#include "arcsim/Output.h"
#include "protocol/Text.h"
#include "scenario/JsonNode.h"
#include "scenario/JsonText.h"
#include "support/Files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>
#include <unistd.h>

namespace arcsim {

namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using Real = ScenarioClock::Real;  // counts from the boot of the machine, the same in every process

constexpr int kVersion = 1;
constexpr milliseconds kLongestRun = std::chrono::hours(10L * 365 * 24);
constexpr const char* kAccepted = "what a daemon that was killed has left";

milliseconds realNow()
{
    return std::chrono::duration_cast<milliseconds>(Real::now().time_since_epoch());
}

/// Checksum of the content as written, to detect an edited file. FNV-1a, 64 bits.
std::string checksumOf(const std::string& content)
{
    std::uint64_t sum = 0xcbf29ce484222325U;
    for (const char c : content)
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(sum));
    return digits.data();
}

std::string bytes(const JsonNode& node)
{
    const auto bytes = bytesOf(node.text("a text"));
    if (!bytes)
        node.refuse("a text of characters up to U+00FF");
    return *bytes;
}

ModemHost::Memory memoryOf(const JsonNode& content)
{
    ModemHost::Memory memory;
    memory.engineOn = content.at("engineOn", "true or false").flag();
    for (const JsonNode& setting : content.at("settings", "an object").members())
        memory.quotedSettings[bytesOf(setting.key()).value_or("")] = bytes(setting);
    const std::vector<JsonNode> periods = content.at("lstaPeriods", "a list").elements();
    for (std::size_t index = 0; index < std::min(periods.size(), memory.lstaPeriods.size()); ++index)
        if (!periods[index].isNull())
            memory.lstaPeriods[index] = static_cast<int>(
                periods[index].integer(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    const JsonNode begin = content.at("beginMs", "a time in milliseconds or null");
    if (!begin.isNull())
        memory.time = realNow() - milliseconds(begin.integer(-kLongestRun.count(), kLongestRun.count()));
    return memory;
}

/// The content of a file that a daemon wrote and nobody has changed since.
json contentOf(const std::string& file, const std::string& text)
{
    json document = parseJson(file, text);
    const JsonNode root(file, document);
    root.requireKeys({"memory", "checksum", "content"});
    root.at("memory", "the version of the file").integer(kVersion, kVersion);
    const std::string checksum = root.at("checksum", "16 hexadecimal digits").text("16 hexadecimal digits");
    root.at("content", "an object");
    if (checksum != checksumOf(document["content"].dump()))
        throw ScenarioError(file + ": was changed since a daemon wrote it; accepted: " + kAccepted);
    return document["content"];
}

/// Everything except the time.
json stateOf(const std::string& scenario, const ModemHost::Memory& memory)
{
    json settings = json::object();
    for (const auto& [key, quoted] : memory.quotedSettings)
        settings[charactersOf(key)] = charactersOf(quoted);
    json periods = json::array();
    for (const auto& period : memory.lstaPeriods)
        periods.push_back(period ? json(*period) : json(nullptr));
    return {{"scenario", charactersOf(scenario)},
            {"engineOn", memory.engineOn},
            {"lstaPeriods", periods},
            {"settings", settings}};
}

}  // namespace

Remembered readMemory(const std::string& file, const std::string& scenario)
{
    std::error_code error;
    if (file.empty() || !std::filesystem::exists(std::filesystem::symlink_status(file, error)))
        return {};
    try {
        return parseMemory(file, support::readFile(file, {kLargestFile, kAccepted, false, true}), scenario);
    } catch (const support::FileError& refusal) {
        return {std::nullopt, refusal.what()};
    }
}

Remembered parseMemory(const std::string& file, const std::string& text, const std::string& scenario)
{
    try {
        const json document = contentOf(file, text);
        const JsonNode content(file, document);
        if (content.at("scenario", "a text").text("a text") != charactersOf(scenario))
            return {};
        const ModemHost::Memory memory = memoryOf(content);
        const bool isOfThisStart = !memory.time || *memory.time >= milliseconds(0);
        return isOfThisStart ? Remembered{memory, ""} : Remembered{};
    } catch (const std::runtime_error& refusal) {
        return {std::nullopt, refusal.what()};
    }
}

std::string memoryText(const std::string& scenario, const ModemHost::Memory& memory)
{
    json content = stateOf(scenario, memory);
    content["beginMs"] = memory.time ? json((realNow() - *memory.time).count()) : json(nullptr);
    const std::string text = content.dump();
    return json{{"memory", kVersion}, {"checksum", checksumOf(text)}, {"content", std::move(content)}}.dump() + '\n';
}

void writeMemory(const std::string& file, const std::string& scenario, const ModemHost::Memory& memory,
                 std::string& written)
{
    const std::string state = stateOf(scenario, memory).dump() + (memory.time ? "begun" : "");
    if (state == written)
        return;
    support::replaceFile(file, memoryText(scenario, memory), "a path for what a modem remembers", 0600);
    written = state;
}

std::optional<ModemHost::Memory> MemoryKeeper::recall() const
{
    const Remembered remembered = readMemory(m_file, m_scenario);
    if (!remembered.refusal.empty())
        program::sayError(remembered.refusal + "; the modem starts as from the factory");
    return remembered.memory;
}

void MemoryKeeper::keep(const ModemHost::Memory& memory)
{
    if (m_file.empty())
        return;
    std::string problem;
    try {
        writeMemory(m_file, m_scenario, memory, m_written);
    } catch (const support::FileError& error) {
        problem = error.what();
    }
    if (!problem.empty() && problem != m_problem)
        program::sayError(problem + "; a daemon after this one will not know what the modem was doing");
    m_problem = problem;
}

void MemoryKeeper::forget()
{
    // Also removes a file that is there although writing it, or a later step, failed.
    if (m_written.empty() && !readMemory(m_file, m_scenario).memory)
        return;
    if (::unlink(m_file.c_str()) != 0 && errno != ENOENT)
        program::sayError(m_file + ": cannot be removed: " + std::generic_category().message(errno) +
                          "; a daemon after this one will go on from it");
}

void linkOutput(const std::string& link, const std::string& path)
{
    std::error_code error;
    const auto there = std::filesystem::symlink_status(link, error);
    if (std::filesystem::exists(there) && !std::filesystem::is_symlink(there))
        throw std::runtime_error(link + ": is there and no link; accepted: a path for a link to the raw output");
    std::filesystem::remove(link, error);
    std::filesystem::create_symlink(path, link, error);
    if (error)
        throw std::runtime_error(link + ": there can be no link to the raw output: " + error.message());
}

}  // namespace arcsim
