// Any bytes as a receiver's output: sentences are exactly those with a right checksum, however the bytes are cut, and
// an epoch holds only possible values. An input is a stream of bytes; "*?" in it is a right checksum.

#include "fuzz/Finding.h"
#include "fuzz/Signed.h"
#include "nmea/EpochBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using nmea::Epoch;
using nmea::NmeaReader;
using nmea::Sentence;

void require(bool holds, const char* what)
{
    if (!holds)
        fuzz::finding(what);
}

std::string bodyOf(const Sentence& sentence)
{
    std::string body = sentence.talker + sentence.formatter;
    for (const std::string& field : sentence.fields)
        body += ',' + field;
    return body;
}

/// What the standard says of a sentence, asked of the stream itself.
void requireSentence(const std::string& stream, const Sentence& sentence)
{
    const std::string body = bodyOf(sentence);
    const std::string_view there = std::string_view(stream).substr(sentence.position);
    require(there.substr(0, body.size() + 2) == '$' + body + '*', "a sentence is not what stands in the stream");
    unsigned sum = 0;
    for (const char c : body) {
        require(c >= ' ' && c <= '~' && c != '$', "a sentence has a byte that is not printable");
        sum ^= static_cast<unsigned char>(c);
    }
    require(std::stoul(std::string(there.substr(body.size() + 2, 2)), nullptr, 16) == sum,
            "a sentence with a wrong checksum is believed");
}

struct Read
{
    std::vector<Sentence> sentences{};
    NmeaReader::Counters counters{};
};

Read readIn(std::string_view stream, std::size_t piece)
{
    Read read;
    NmeaReader reader;
    const auto keep = [&](const std::vector<Sentence>& more) {
        read.sentences.insert(read.sentences.end(), more.begin(), more.end());
    };
    for (; !stream.empty(); stream.remove_prefix(std::min(piece, stream.size())))
        keep(reader.read(stream.substr(0, piece)));
    keep(reader.finish());
    read.counters = reader.counters();
    return read;
}

bool isWithin(const std::optional<double>& value, double lowest, double highest)
{
    return !value || (*value >= lowest && *value <= highest);
}

void requireEpoch(const Epoch& epoch)
{
    constexpr double kMost = 2e9;  // of what has no limit by nature: a number that the reader believes, in other units
    require(isWithin(epoch.latitudeDeg, -90, 90), "a latitude beyond 90 degrees");
    require(isWithin(epoch.longitudeDeg, -180, 180), "a longitude beyond 180 degrees");
    require(epoch.latitudeDeg.has_value() == epoch.longitudeDeg.has_value(), "half a position");
    for (const auto& value : {epoch.altitudeM, epoch.speedKmh, epoch.courseDeg, epoch.hdop, epoch.meanCarrierDbHz})
        require(isWithin(value, -kMost, kMost), "a value that is no number");
    require(!epoch.utcMs || (*epoch.utcMs >= 0 && *epoch.utcMs < 24 * 3600 * 1000 + 1000), "a time beyond the day");
    require(!epoch.date || (epoch.date->month >= 1 && epoch.date->month <= 12 && epoch.date->day >= 1 &&
                            epoch.date->day <= 31 && epoch.date->year >= 1980 && epoch.date->year <= 9999),
            "a date that does not exist");
    std::array<int, nmea::kSystemCount> inView{};
    for (const nmea::Satellite& satellite : epoch.inView) {
        require(satellite.number >= 1 && satellite.number <= 999, "a satellite without a number");
        ++inView.at(nmea::indexOf(satellite.system));
    }
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i)
        require(epoch.satellites[i].inView == inView[i], "satellites in view are miscounted");
    require(timeText(epoch).size() == 8, "a time of another length");
    require(dateText(epoch).size() == (epoch.date ? 10 : 0), "a date of another length");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string stream = fuzz::withChecksums(std::string(data, data + size));
    const Read whole = readIn(stream, std::string::npos);
    const Read cut = readIn(stream, 3);
    require(whole.counters.sentences == whole.sentences.size(), "sentences are miscounted");
    require(std::equal(whole.sentences.begin(), whole.sentences.end(), cut.sentences.begin(), cut.sentences.end(),
                       [](const Sentence& a, const Sentence& b) {
                           return a.position == b.position && bodyOf(a) == bodyOf(b);
                       }) &&
                whole.counters.garbage == cut.counters.garbage &&
                whole.counters.wrongChecksums == cut.counters.wrongChecksums,
            "how the bytes arrive changes the sentences");
    nmea::EpochBuilder builder;
    for (const Sentence& sentence : whole.sentences) {
        requireSentence(stream, sentence);
        if (const auto epoch = builder.add(sentence))
            requireEpoch(*epoch);
    }
    if (const auto epoch = builder.flush())
        requireEpoch(*epoch);
    return 0;
}
