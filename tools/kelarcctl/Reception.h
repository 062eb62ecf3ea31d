#pragma once

#include "nmea/Device.h"
#include "nmea/EpochBuilder.h"
#include "nmea/NmeaReader.h"

#include <functional>
#include <optional>
#include <string>

namespace kelarcctl {

/// The receiver's output that has been read so far.
class Reception
{
public:
    /// Throws std::system_error when the device cannot be opened.
    explicit Reception(const std::string& path) : m_device(path) {}

    int descriptor() const { return m_device.descriptor(); }
    /// Reads the bytes that have arrived. Throws std::system_error when the device is gone.
    void read();
    /// To be called after a pause in the output: the present epoch is complete.
    void flush();

    bool hasBytes() const { return m_bytes > 0; }
    unsigned epochs() const { return m_epochs; }
    const nmea::Epoch& last() const { return m_last; }
    const nmea::NmeaReader::Counters& counters() const { return m_reader.counters(); }

private:
    void take(const std::optional<nmea::Epoch>& epoch);

    nmea::Device m_device;
    nmea::NmeaReader m_reader;
    nmea::EpochBuilder m_builder;
    std::size_t m_bytes = 0;
    unsigned m_epochs = 0;
    nmea::Epoch m_last{};
};

}  // namespace kelarcctl
