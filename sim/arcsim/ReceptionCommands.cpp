#include "arcsim/ReceptionCommands.h"

#include "arcsim/Commands.h"
#include "arcsim/ControlOptions.h"
#include "arcsim/Duration.h"
#include "arcsim/Values.h"
#include "support/NearestName.h"

#include <algorithm>
#include <memory>

namespace arcsim::program {

namespace {

using std::chrono::milliseconds;

constexpr const char* kReceptionGroup = "Reception";
constexpr milliseconds kShortest{1};

const std::vector<std::string>& receivedSystems()
{
    static const std::vector<std::string> names{"gps", "glonass", "galileo", "beidou", "qzss", "sbas", "all"};
    return names;
}

struct ReceptionOptions
{
    ControlOptions control{};
    std::string time{};
    std::vector<std::string> systems{};
    std::optional<milliseconds> duration{};
    bool off = false;
};

int noFix(const ReceptionOptions& options)
{
    Json control{{"control", "no-fix"}};
    std::string text = "no fix until 'arcsim no-fix off'\n";
    if (options.time == "off") {
        control["off"] = true;
        text = "a fix is possible again\n";
    } else if (options.time != "on") {
        const milliseconds time = parseDuration(options.time).value();
        control["forMs"] = time.count();
        text = "no fix for " + durationText(time) + '\n';
    }
    return runControl(options.control, control, [&](const Json&) { return text; });
}

void addNoFix(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<ReceptionOptions>();
    CLI::App& command = addControl(
        app, {"no-fix", kReceptionGroup, "Hear satellites too badly for a fix", "arcsim no-fix 20s"}, options->control);
    addTimeOrWord(command, kShortest, {"on", "off"}, options->time, "For how long; on: until off; off: no longer")
        ->required();
    commands.add(command, [options] { return noFix(*options); });
}

int jam(const ReceptionOptions& options)
{
    std::vector<std::string> systems;
    for (const std::string& system : options.systems)
        if (std::find(systems.begin(), systems.end(), system) == systems.end())
            systems.push_back(system);
    const bool all = std::find(systems.begin(), systems.end(), "all") != systems.end();
    if (all && systems.size() > 1)
        throw UsageError("'all' cannot be combined with other systems; accepted: all, or the names of some");
    if (options.off && options.duration)
        throw UsageError("--off excludes --for");
    Json control{{"control", "jam"}, {"systems", all ? Json("all") : Json(systems)}};
    std::string text = (all ? "all systems" : support::joined(systems)) + ": ";
    if (options.off) {
        control["off"] = true;
        text += "no longer jammed\n";
    } else if (options.duration) {
        control["forMs"] = options.duration->count();
        text += "jammed for " + durationText(*options.duration) + '\n';
    } else {
        text += "jammed until 'arcsim jam' with --off\n";
    }
    return runControl(options.control, control, [&](const Json&) { return text; });
}

void addJam(CLI::App& app, Commands& commands)
{
    const auto options = std::make_shared<ReceptionOptions>();
    CLI::App& command = addControl(
        app, {"jam", kReceptionGroup, "Keep satellite systems from being heard", "arcsim jam gps glonass --for 20s"},
        options->control);
    addSystems(command, receivedSystems(), options->systems, "Of " + support::joined(receivedSystems()))->required();
    addTime(
        command, "--for", kShortest, [options](auto time) { options->duration = time; },
        "For how long; if not given until --off");
    command.add_flag("--off", options->off, "No longer");
    commands.add(command, [options] { return jam(*options); });
}

}  // namespace

void addReceptionCommands(CLI::App& app, Commands& commands)
{
    addNoFix(app, commands);
    addJam(app, commands);
}

}  // namespace arcsim::program
