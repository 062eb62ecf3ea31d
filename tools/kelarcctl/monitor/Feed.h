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

/// The sentences: from the terminal to epochs.
class Feed
{
public:
    using Clock = Session::Clock;

    /// Throws std::system_error.
    void open(const std::string& path);
    void close();

    int descriptor() const { return m_device ? m_device->descriptor() : -1; }
    /// It has given something since it was opened.
    bool wasRead() const { return m_wasRead; }

    /// Takes what has arrived; `take` gets the epochs that are complete by it. Throws std::system_error when the
    /// terminal is gone; it is closed then.
    template <typename Take>
    void read(Model& model, const Take& take)
    {
        for (const nmea::Sentence& sentence : sentences(model))
            if (const auto epoch = m_builder.add(sentence))
                take(*epoch);
    }

    /// When the present epoch is complete unless more of it comes.
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
