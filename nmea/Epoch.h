#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nmea {

enum class System
{
    gps,
    glonass,
    galileo,
    beidou,
    qzss,
    sbas,
};
inline constexpr std::size_t kSystemCount = 6;

constexpr std::size_t indexOf(System system)
{
    return static_cast<std::size_t>(system);
}

enum class Fix
{
    none,
    twoD,
    threeD,
};

struct Date
{
    int year = 0;
    int month = 0;
    int day = 0;
};

struct Satellites
{
    int used = 0;  ///< in the fix
    int inView = 0;
};

/// One satellite in view.
struct Satellite
{
    System system{};
    int number = 0;                        ///< as the receiver numbers it
    std::optional<double> elevationDeg{};  ///< above the horizon
    std::optional<double> azimuthDeg{};    ///< clockwise from north
    std::optional<double> carrierDbHz{};   ///< C/N0, of its strongest signal; empty while it is not tracked
    bool isUsed = false;                   ///< in the fix
};

/// The receiver's report of one moment. Members that it did not report are empty.
struct Epoch
{
    std::optional<int> utcMs{};  ///< since midnight
    std::optional<Date> date{};
    Fix fix = Fix::none;
    std::optional<double> latitudeDeg{};   ///< south is negative
    std::optional<double> longitudeDeg{};  ///< west is negative
    std::optional<double> altitudeM{};     ///< above mean sea level
    std::optional<double> speedKmh{};
    std::optional<double> courseDeg{};  ///< over ground; north is 0, east 90
    std::optional<double> hdop{};
    std::array<Satellites, kSystemCount> satellites{};
    std::vector<Satellite> inView{};          ///< by system and number
    std::optional<double> meanCarrierDbHz{};  ///< mean C/N0 of the satellites with a signal
};

// Values of sentence fields; empty when malformed.
std::optional<double> numberOf(std::string_view field);
std::optional<int> timeOf(std::string_view field);   ///< "hhmmss.ss" in milliseconds since midnight
std::optional<Date> dateOf(std::string_view field);  ///< "ddmmyy"
std::optional<Date> dateOf(std::string_view day, std::string_view month, std::string_view year);
/// "ddmm.mmmm" or "dddmm.mmmm" and N, S, E or W, in degrees.
std::optional<double> angleOf(std::string_view field, std::string_view hemisphere);

/// Which system a satellite number belongs to. The system id (NMEA 4.10 and later) may be empty.
std::optional<System> systemOf(std::string_view talker, std::string_view systemId, int number);

/// "03:00:07", or dashes while the time is not known.
std::string timeText(const Epoch& epoch);
/// "2024-06-12"; empty while the date is not known.
std::string dateText(const Epoch& epoch);

}  // namespace nmea
