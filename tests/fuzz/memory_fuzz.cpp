// Any bytes as the file that a killed daemon left give a memory that a modem continues from and that reads back as
// written, or a reason why the file is not trusted. An input is the file's content, or that of its member "content",
// for which the file holds a checksum.

#include "arcsim/Memory.h"
#include "fuzz/Finding.h"
#include "sim/held_clock.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstdio>

namespace {

using arcsim::ModemHost;
using arcsim::Remembered;
using nlohmann::json;

constexpr const char* kScenario = "s.json|";

std::string fileOf(const std::string& content)
{
    const json document = json::parse(content, nullptr, false);
    if (document.is_discarded() || !document.is_object() || document.contains("memory"))
        return content;
    const std::string text = document.dump(-1, ' ', false, json::error_handler_t::replace);
    std::uint64_t sum = 14695981039346656037U;
    for (const char c : text)
        sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211U;
    char digits[17] = {};
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(sum));
    return R"({"memory":1,"checksum":")" + std::string(digits) + R"(","content":)" + text + "}";
}

bool isSame(const ModemHost::Memory& a, const ModemHost::Memory& b)
{
    return a.quotedSettings == b.quotedSettings && a.engineOn == b.engineOn && a.lstaPeriods == b.lstaPeriods &&
           a.time == b.time;
}

void goOn(const ModemHost::Memory& memory)
{
    ModemHost host(arcsim::ScenarioFile{}, arcsim::ScenarioClock::Mode::virtualTime);
    host.restore(memory);
    const std::string text = arcsim::memoryText(kScenario, host.memory());
    const Remembered again = arcsim::parseMemory("again", text, kScenario);
    if (!again.memory || !isSame(*again.memory, host.memory()))
        fuzz::finding("a modem that went on is not remembered: " + again.refusal);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const host_test::HeldClock clock;
    const std::string input(data, data + size);
    const Remembered read = arcsim::parseMemory("fuzz", fileOf(input), kScenario);
    if (!read.refusal.empty())
        fuzz::requireReadable(read.refusal);
    if (!read.memory)
        return json::accept(input) ? 0 : -1;  // scenario_fuzz finds out more about what is no JSON
    const Remembered again = arcsim::parseMemory("again", arcsim::memoryText(kScenario, *read.memory), kScenario);
    if (!again.memory || !isSame(*again.memory, *read.memory))
        fuzz::finding("a memory is not read as it was written: " + again.refusal);
    goOn(*read.memory);
    return 0;
}
