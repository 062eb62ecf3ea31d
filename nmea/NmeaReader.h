#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nmea {

/// One NMEA 0183 sentence with a correct checksum.
struct Sentence
{
    std::string talker;               ///< "GN"; empty for a proprietary sentence
    std::string formatter;            ///< "RMC"; of a proprietary sentence the whole address
    std::vector<std::string> fields;  ///< after the address; a missing one reads as empty

    std::string_view field(std::size_t index) const
    {
        return index < fields.size() ? std::string_view(fields[index]) : std::string_view();
    }
};

/// Finds sentences in a stream of bytes, however it is cut into pieces. What is no sentence is counted and skipped.
class NmeaReader
{
public:
    struct Counters
    {
        std::uint64_t sentences = 0;
        std::uint64_t wrongChecksums = 0;
        std::uint64_t garbage = 0;  ///< lines that are no sentence at all
    };

    /// The sentences that these bytes complete.
    std::vector<Sentence> read(std::string_view bytes);

    const Counters& counters() const { return m_counters; }

private:
    void endLine(std::vector<Sentence>& sentences);

    std::string m_line;
    bool m_tooLong = false;
    Counters m_counters;
};

}  // namespace nmea
