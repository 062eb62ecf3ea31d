#include "scenario/SystemNames.h"

#include "support/Words.h"

namespace arcsim {

const std::vector<std::string>& systemNames()
{
    // Never destroyed, like the table of settings: threads may still read it while the process exits.
    static const auto* const names =
        new std::vector<std::string>{"gps", "glonass", "galileo", "beidou", "qzss", "sbas"};
    return *names;
}

const std::vector<std::string>& lstaSystemNames()
{
    static const auto* const names = new std::vector<std::string>{"gps", "glonass", "beidou", "galileo"};
    return *names;
}

std::array<bool, kGnssSystemCount> readSystems(const JsonNode& node)
{
    std::array<bool, kGnssSystemCount> systems{};
    const std::string accepted = "\"all\" or a list of " + support::joined(systemNames());
    if (!node.isArray()) {
        if (!support::sameLetters(node.text(accepted), "all"))
            node.refuse(accepted);
        systems.fill(true);
        return systems;
    }
    const std::vector<JsonNode> names = node.elements();
    if (names.empty())
        node.refuse(accepted);
    for (const JsonNode& name : names)
        systems.at(name.wordInAnyCase(systemNames())) = true;
    return systems;
}

modem::LstaSystem readLstaSystem(const JsonNode& node)
{
    return static_cast<modem::LstaSystem>(node.wordInAnyCase(lstaSystemNames()));
}

}  // namespace arcsim
