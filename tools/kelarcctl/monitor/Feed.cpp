#include "kelarcctl/monitor/Feed.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace kelarcctl {

using std::chrono::milliseconds;

void Feed::open(const std::string& path)
{
    m_wasRead = false;
    m_device = std::make_unique<nmea::Device>(path);
}

void Feed::close()
{
    m_device.reset();
}

std::vector<nmea::Sentence> Feed::sentences(Model& model)
{
    if (!m_device)
        return {};
    std::string bytes;
    try {
        bytes = m_device->read();
    } catch (const std::system_error&) {
        m_device.reset();
        throw;
    }
    if (bytes.empty())
        return {};
    m_wasRead = true;
    m_lastBytes = Clock::now();
    std::vector<nmea::Sentence> sentences = m_reader.read(bytes);
    if (!sentences.empty())
        model.lastSentenceMs = model.nowMs;
    model.sentences = m_reader.counters().sentences;
    model.wrongChecksums = m_reader.counters().wrongChecksums;
    model.garbage = m_reader.counters().garbage;
    return sentences;
}

Feed::Clock::time_point Feed::epochEnd(const Model& model) const
{
    // A receiver sends an epoch without a pause, so a pause of this length ends the epoch.
    constexpr int kLongestGapMs = 300;
    if (!m_builder.isPending())
        return Clock::time_point::max();
    const SettingRow* const period = model.setting("period");
    const int periodMs = period != nullptr && period->value ? std::atoi(period->value->c_str()) : 1000;
    return m_lastBytes + milliseconds(std::clamp(periodMs / 2, 20, kLongestGapMs));
}

}  // namespace kelarcctl
