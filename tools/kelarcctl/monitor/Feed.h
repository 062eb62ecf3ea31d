#pragma once

#include "kelarcctl/Session.h"
#include "kelarcctl/monitor/Model.h"

#include "nmea/Device.h"
#include "nmea/EpochBuilder.h"
#include "nmea/NmeaReader.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace kelarcctl {

/// Reads sentences from the terminal and builds epochs.
class Feed
{
public:
    using Clock = Session::Clock;

    /// Throws std::system_error.
    void open(const std::string& path);
    void close();

    int descriptor() const { return m_device ? m_device->descriptor() : -1; }
    /// Whether data has come since opening.
    bool wasRead() const { return m_wasRead; }

    /// Reads the bytes that have arrived and passes completed epochs to `take`. When the terminal is gone, closes it
    /// and throws std::system_error.
    template <typename Take>
    void read(Model& model, const Take& take)
    {
        for (const nmea::Sentence& sentence : sentences(model))
            if (const auto epoch = m_builder.add(sentence))
                take(*epoch);
    }

    /// When the present epoch counts as complete if no more data comes.
    Clock::time_point epochEnd(const Model& model) const;
    std::optional<nmea::Epoch> flush() { return m_builder.flush(); }

private:
    std::vector<nmea::Sentence> sentences(Model& model);

    std::unique_ptr<nmea::Device> m_device{};
    nmea::NmeaReader m_reader{};
    nmea::EpochBuilder m_builder{};
    Clock::time_point m_lastBytes{};
    bool m_wasRead = false;
};

}  // namespace kelarcctl
