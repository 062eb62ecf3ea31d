#pragma once

#include <string>

namespace nmea {

/// The terminal that carries the receiver's sentences.
class Device
{
public:
    /// Opens it and sets raw mode, so that bytes come as they were sent. Throws std::system_error.
    explicit Device(const std::string& path);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    int descriptor() const { return m_descriptor; }

    /// The bytes that have arrived, without waiting; empty when there are none. Throws std::system_error when the
    /// device is gone.
    std::string read();

private:
    const int m_descriptor;
    const std::string m_path;
};

}  // namespace nmea
