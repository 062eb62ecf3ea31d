#include "arcsim/Memory.h"

#include "protocol/Messages.h"
#include "protocol/Text.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace arcsim {

namespace {

using std::chrono::milliseconds;
using Real = ScenarioClock::Real;  // counts from the start of the machine, the same in every process

milliseconds realNow()
{
    return std::chrono::duration_cast<milliseconds>(Real::now().time_since_epoch());
}

}  // namespace

std::optional<ModemHost::Memory> readMemory(const std::string& file, const std::string& scenario)
{
    std::ifstream stream(file);
    std::ostringstream content;
    content << stream.rdbuf();
    const Json json = Json::parse(content.str(), nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    try {
        if (json.at("scenario") != charactersOf(scenario))
            return std::nullopt;
        ModemHost::Memory memory;
        memory.engineOn = json.at("engineOn");
        for (const auto& [key, quoted] : json.at("settings").get<std::map<std::string, std::string>>())
            memory.quotedSettings[bytesOf(key).value_or("")] = bytesOf(quoted).value_or("");
        const Json& periods = json.at("lstaPeriods");
        for (std::size_t index = 0; index < memory.lstaPeriods.size(); ++index)
            if (!periods.at(index).is_null())
                memory.lstaPeriods[index] = periods[index].get<int>();
        if (!json.at("beginMs").is_null()) {
            memory.time = realNow() - milliseconds(json.at("beginMs").get<std::int64_t>());
            if (*memory.time < milliseconds(0))
                return std::nullopt;
        }
        return memory;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

void writeMemory(const std::string& file, const std::string& scenario, const ModemHost::Memory& memory,
                 std::string& written)
{
    Json settings = Json::object();
    for (const auto& [key, quoted] : memory.quotedSettings)
        settings[charactersOf(key)] = charactersOf(quoted);
    Json periods = Json::array();
    for (const auto& period : memory.lstaPeriods)
        periods.push_back(period ? Json(*period) : Json(nullptr));
    Json json = {{"scenario", charactersOf(scenario)},
                 {"hasBegun", memory.time.has_value()},
                 {"engineOn", memory.engineOn},
                 {"lstaPeriods", periods},
                 {"settings", settings}};
    const std::string text = lineOf(json);
    if (text == written)
        return;
    written = text;
    json["beginMs"] = memory.time ? Json((realNow() - *memory.time).count()) : Json(nullptr);
    const std::string draft = file + ".new";
    {
        std::ofstream stream(draft, std::ios::trunc);
        ::chmod(draft.c_str(), 0600);
        stream << lineOf(json);
    }
    std::rename(draft.c_str(), file.c_str());  // whole or not at all
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
