// Reads sentences from standard input with nmea and prints the epochs as JSON, one per line. The bytes are read in
// pieces of the size in the first argument, as a device would cut them.

#include "nmea/EpochBuilder.h"
#include "nmea/NmeaReader.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string shown(const std::optional<double>& value)
{
    char text[48];
    std::snprintf(text, sizeof text, "%.9f", value.value_or(0));
    return value ? text : "null";
}

void print(const nmea::Epoch& epoch)
{
    std::string used;
    for (const nmea::Satellites& satellites : epoch.satellites)
        used += (used.empty() ? "" : ", ") + std::to_string(satellites.used);
    std::printf("{\"time\": \"%s\", \"utcMs\": %d, \"date\": \"%s\", \"mode\": %d, \"lat\": %s, \"lon\": %s, "
                "\"altMSL\": %s, \"inView\": %zu, \"used\": [%s]}\n",
                nmea::timeText(epoch).c_str(), epoch.utcMs.value_or(-1), nmea::dateText(epoch).c_str(),
                static_cast<int>(epoch.fix) + 1, shown(epoch.latitudeDeg).c_str(), shown(epoch.longitudeDeg).c_str(),
                shown(epoch.altitudeM).c_str(), epoch.inView.size(), used.c_str());
}

}  // namespace

int main(int argc, char** argv)
{
    std::string piece(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 4096, '\0');
    nmea::NmeaReader reader;
    nmea::EpochBuilder builder;
    const auto take = [&](const std::vector<nmea::Sentence>& sentences) {
        for (const nmea::Sentence& sentence : sentences)
            if (const auto epoch = builder.add(sentence))
                print(*epoch);
    };
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), stdin))
        take(reader.read({piece.data(), count}));
    take(reader.finish());
    if (const auto epoch = builder.flush())
        print(*epoch);
    const nmea::NmeaReader::Counters& counters = reader.counters();
    std::printf("{\"sentences\": %llu, \"wrongChecksums\": %llu, \"garbage\": %llu}\n",
                static_cast<unsigned long long>(counters.sentences),
                static_cast<unsigned long long>(counters.wrongChecksums),
                static_cast<unsigned long long>(counters.garbage));
}
