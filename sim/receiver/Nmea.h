#pragma once

// Builds the parts of NMEA 0183 sentences. The folder nmea reads them.

#include <chrono>
#include <string>
#include <string_view>

namespace arcsim::nmea {

/// Exclusive or of all characters, as two upper-case hexadecimal digits.
std::string checksum(std::string_view body);

/// "$", the body, "*", its checksum, CR LF.
std::string sentence(std::string_view body);

/// Rounded, with a decimal point in every locale, never "-0.0". Padded with zeros to a width.
std::string number(double value, int decimals, std::size_t width = 1);

std::string latitude(double latitudeDeg);                     ///< "3540.87440,N"
std::string longitude(double longitudeDeg);                   ///< "13946.02720,E"
std::string time(std::chrono::system_clock::time_point utc);  ///< "030000.20"
std::string date(std::chrono::system_clock::time_point utc);  ///< "120624"

}  // namespace arcsim::nmea
