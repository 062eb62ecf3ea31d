// Any bytes as a file of settings give each setting at most once, with an accepted value that reads back as written, or
// a trouble that lists all errors.

#include "fuzz/Finding.h"
#include "kelarcctl/SettingsFile.h"
#include "kelarcctl/Trouble.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <sstream>

namespace {

using kelarcctl::Json;
using kelarcctl::Wanted;

void requireAccepted(const std::vector<Wanted>& wanted)
{
    std::set<const kelarcctl::Setting*> settings;
    for (const Wanted& each : wanted) {
        if (!settings.insert(each.setting).second)
            fuzz::finding("a setting is given twice: " + each.setting->command);
        if (!each.setting->isWritable() || each.setting->plain(each.value) != each.value)
            fuzz::finding("a value that is not accepted: " + each.value);
    }
}

void requireSameWhenWritten(const std::vector<Wanted>& wanted)
{
    Json values = Json::object();
    for (const Wanted& each : wanted)
        values[each.setting->command] = each.setting->json(each.value);
    const std::vector<Wanted> again = kelarcctl::readSettings(Json{{"settings", values}}.dump(2), "written");
    const bool isSame =
        std::equal(wanted.begin(), wanted.end(), again.begin(), again.end(),
                   [](const Wanted& a, const Wanted& b) { return a.setting == b.setting && a.value == b.value; });
    if (!isSame)
        fuzz::finding("settings are not read as they were written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<Wanted> wanted;
    try {
        wanted = kelarcctl::readSettings(std::string(data, data + size), "fuzz.json");
    } catch (const kelarcctl::TroubleFailure& failure) {
        std::istringstream lines(failure.trouble().shown());
        for (std::string line; std::getline(lines, line);)
            fuzz::requireReadable(line);
        return 0;
    }
    requireAccepted(wanted);
    if (!wanted.empty())
        requireSameWhenWritten(wanted);
    return 0;
}
