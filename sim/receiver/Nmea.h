#pragma once

// The parts of which NMEA 0183 sentences are made, and how to take them apart again.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim::nmea {

/// Exclusive or of all characters, as two upper-case hexadecimal digits.
std::string checksum(std::string_view body);

/// "$", the body, "*", its checksum, CR LF.
std::string sentence(std::string_view body);

/// The body of a line that is a sentence with a correct checksum, else empty. The line end may be there or not.
std::string_view bodyOf(std::string_view line);

/// Between the commas; the address comes first.
std::vector<std::string_view> fieldsOf(std::string_view body);

/// Rounded, with a decimal point whatever locale the process has chosen, never "-0.0". A width fills up with zeros.
std::string number(double value, int decimals, std::size_t width = 1);

std::string latitude(double latitudeDeg);                     ///< "3540.87440,N"
std::string longitude(double longitudeDeg);                   ///< "13946.02720,E"
std::string time(std::chrono::system_clock::time_point utc);  ///< "030000.20"
std::string date(std::chrono::system_clock::time_point utc);  ///< "120624"

// What a field says; empty when it is empty or malformed.
std::optional<double> valueOf(std::string_view field);
std::optional<std::chrono::milliseconds> timeOfDay(std::string_view field);  ///< "030000.20"
std::optional<std::chrono::system_clock::time_point> utcOf(std::string_view dateField, std::string_view timeField);
std::optional<double> angleOf(std::string_view field,
                              std::string_view hemisphere);  ///< degrees, south and west below 0

}  // namespace arcsim::nmea
