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
    std::uint64_t position = 0;       ///< of its `$`, in bytes from the beginning of the stream

    std::string_view field(std::size_t index) const
    {
        return index < fields.size() ? std::string_view(fields[index]) : std::string_view();
    }
};

/// Finds sentences in a stream of bytes, however it is cut into pieces. Everything else is counted and skipped.
///
/// A `$` begins a sentence anywhere: after binary bytes, and within a sentence, which is then lost. CR, LF, the next
/// `$` or a byte that is not printable ends a sentence. Sentences without a checksum are ignored, and so are those that
/// begin with `!`: they do not come from a satellite receiver.
class NmeaReader
{
public:
    struct Counters
    {
        std::uint64_t sentences = 0;
        std::uint64_t wrongChecksums = 0;
        std::uint64_t garbage = 0;  ///< lines with anything other than sentences
    };

    /// The sentences that these bytes complete.
    std::vector<Sentence> read(std::string_view bytes);
    /// The stream has ended, perhaps without a line end behind its last sentence.
    std::vector<Sentence> finish();
    const Counters& counters() const { return m_counters; }

private:
    void endText(std::vector<Sentence>& sentences);
    void endLine(std::vector<Sentence>& sentences);

    std::string m_text;         ///< from the last `$` on; empty outside of a possible sentence
    bool m_hasGarbage = false;  ///< in this line
    std::uint64_t m_position = 0;
    Counters m_counters;
};

}  // namespace nmea
