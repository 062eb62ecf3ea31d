#include "receiver/Replay.h"

#include "nmea/NmeaReader.h"
#include "receiver/Nmea.h"
#include "support/Files.h"

#include <cmath>
#include <stdexcept>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kAssumedPeriod{1000};  // where a recording has no times
constexpr milliseconds kDay = std::chrono::hours(24);

constexpr std::size_t kLargestRecording = 256UL << 20U;  // days of a receiver's sentences

bool carriesTime(std::string_view formatter)
{
    for (const char* known : {"GGA", "RMC", "GLL", "GNS", "GST", "GBS", "ZDA"})
        if (formatter == known)
            return true;
    return false;
}

/// Finds the beginnings of epochs, fed one sentence after the other.
class EpochFinder
{
public:
    struct Start
    {
        std::size_t position = 0;
        std::optional<milliseconds> time;  ///< of day
    };

    void sentence(const ::nmea::Sentence& sentence)
    {
        const auto position = static_cast<std::size_t>(sentence.position);
        const std::string address = sentence.talker + sentence.formatter;
        if (m_first.empty())
            m_first = address;
        // GSV and GSA come in groups; only the first of a group can begin an epoch.
        if (address == m_first && (m_previous != m_first || carriesTime(sentence.formatter)))
            m_candidates.push_back(position);
        m_previous = address;

        if (!carriesTime(sentence.formatter))
            return;
        if (const std::optional<int> time = ::nmea::timeOf(sentence.field(sentence.formatter == "GLL" ? 4 : 0)))
            timed(position, milliseconds(*time));
    }

    std::vector<Start> finish()
    {
        if (!m_time)  // no time in the whole recording
            takeCandidates();
        return m_starts;
    }

private:
    void timed(std::size_t position, milliseconds time)
    {
        if (!m_time)
            takeCandidates();
        else if (time != *m_time)
            m_starts.push_back({m_candidates.empty() ? position : m_candidates.front(), {}});
        m_time = time;
        m_starts.back().time = time;
        m_candidates.clear();
    }

    void takeCandidates()
    {
        for (const std::size_t candidate : m_candidates)
            m_starts.push_back({candidate, {}});
    }

    std::string m_first;
    std::string m_previous;
    std::vector<std::size_t> m_candidates;  // since the last sentence with a time; never empty before the first one
    std::optional<milliseconds> m_time;
    std::vector<Start> m_starts;
};

milliseconds between(std::optional<milliseconds> earlier, std::optional<milliseconds> later)
{
    if (!earlier || !later)
        return kAssumedPeriod;
    if (*later > *earlier)
        return *later - *earlier;
    const bool midnight = *earlier - *later > kDay / 2;
    return midnight ? *later + kDay - *earlier : kAssumedPeriod;
}

}  // namespace

Replay::Replay(const std::string& file, double speed, bool loop) : m_speed(speed), m_loop(loop)
{
    if (!(speed > 0) || !std::isfinite(speed))
        throw std::runtime_error("recording '" + file + "': the replay speed " + nmea::number(speed, 3) +
                                 " is not accepted; it is a factor above 0, 1 for the recorded pace");
    m_content = support::readFile(file, {kLargestRecording, "the name of a recording of NMEA 0183 sentences"});
    split();
    if (m_epochs.empty())
        throw std::runtime_error("recording '" + file +
                                 "': holds no NMEA 0183 sentence; accepted are text files with lines such as "
                                 "$GPGGA,...*hh whose checksum is correct");
}

void Replay::split()
{
    const std::string_view content = m_content;
    constexpr std::size_t kPiece = 65536;  // limits how much of the recording is held as sentences
    EpochFinder finder;
    ::nmea::NmeaReader reader;
    for (std::size_t begin = 0; begin < content.size(); begin += kPiece)
        for (const ::nmea::Sentence& sentence : reader.read(content.substr(begin, kPiece)))
            finder.sentence(sentence);
    for (const ::nmea::Sentence& sentence : reader.finish())
        finder.sentence(sentence);
    const std::vector<EpochFinder::Start> starts = finder.finish();
    for (std::size_t i = 0; i < starts.size(); ++i) {
        const std::size_t begin = i == 0 ? 0 : starts[i].position;
        const std::size_t end = i + 1 < starts.size() ? starts[i + 1].position : content.size();
        const milliseconds offset =
            i == 0 ? milliseconds(0) : m_epochs.back().offset + between(starts[i - 1].time, starts[i].time);
        m_epochs.push_back({begin, end, offset});
    }
}

std::optional<milliseconds> Replay::next(const ReceiverSettings&, milliseconds)
{
    if (m_next == m_epochs.size()) {
        if (!m_loop)
            return std::nullopt;
        m_loopStart += m_epochs.back().offset + kAssumedPeriod;
        m_next = 0;
    }
    const double recorded = static_cast<double>((m_loopStart + m_epochs[m_next].offset).count());
    return milliseconds(std::llround(recorded / m_speed));
}

EpochSource::Epoch Replay::take(const ReceiverSettings&, const Interference&, milliseconds)
{
    const Recorded& recorded = m_epochs[m_next++];
    const std::string bytes = m_content.substr(recorded.begin, recorded.end - recorded.begin);
    return {bytes, m_status.take(bytes)};
}

}  // namespace arcsim
