// Whatever the bytes: a scenario or a ScenarioError, in good time. Any other exception ends the run.

#include "scenario/ScenarioFile.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        arcsim::parseScenario("fuzz.json", text);
    } catch (const arcsim::ScenarioError& error) {
        if (std::string(error.what()).empty())
            __builtin_trap();
    }
    return 0;
}
