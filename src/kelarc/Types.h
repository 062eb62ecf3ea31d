#pragma once

#include <cstdint>

namespace kelarc {

/// CPU power mode of the modem (key "Power/Cpu").
enum class CPU_POWER : std::uint8_t
{
    UNKNOWN = 0,  ///< only answered: the read failed or the reply was not recognised
    STANDARD = 1,
    MAXIMUM = 2,
};

/// State of something that is on or off.
enum class RESULT : std::uint8_t
{
    UNKNOWN = 0,  ///< the read failed or the reply was not recognised
    OFF = 1,
    ON = 2,
};

/// A logging zone of the client library, which defines the zones; the number is passed on unchanged. Write
/// LOGGING_ZONE{3} for zone 3.
enum class LOGGING_ZONE : int
{
};

/// The kind of a notification. Events are named by the modem's event number, because the modem defines their meaning;
/// the values of 73 and 74 cross over on purpose.
enum class NOTIFY_ID : std::uint8_t
{
    EVENT_22 = 1,
    EVENT_72 = 3,
    EVENT_74 = 4,
    EVENT_73 = 5,
    EVENT_75 = 6,
    RAW_GNSS_START_ENDED = 7,  ///< from the library itself: a request of startRawGNSS is about to be answered
};

/// Two version texts as the client library wrote them. A text that fills all 64 bytes has no terminating zero.
struct RilVersion
{
    char primary[64];
    char secondary[64];
};

namespace gnss {

/// A satellite system that can be switched on and off.
enum class SYSTEM : std::uint8_t
{
    GLONASS = 1,
    GALILEO = 2,
    BEIDOU = 3,
    QZSS = 4,
};

/// Format of the receiver's output (key "Nmea/Data/Format").
enum class FORMAT : std::uint8_t
{
    UNKNOWN = 0,  ///< only answered: the read failed or the reply was not recognised
    NMEA = 1,
    RAW = 2,
};

/// Period of the receiver's NMEA output, in milliseconds (key "Nmea/FreqMs").
enum class FREQUENCY : std::uint8_t
{
    UNKNOWN = 0,  ///< only answered: the read failed or the reply was not recognised
    EVERY_1000_MS = 1,
    EVERY_500_MS = 2,
    EVERY_200_MS = 3,
    EVERY_100_MS = 4,
};

}  // namespace gnss

namespace lsta {

/// A satellite system whose LSTA can be asked for.
enum class TECH : int
{
    GPS = 1,
    GLONASS = 2,
    BEIDOU = 3,
    GALILEO = 4,
};

/// Which system an LSTA notification is about.
enum class TYPE : std::int32_t
{
    GPS = 7,
    GLONASS = 8,
    BEIDOU = 9,
    GALILEO = 10,
};

}  // namespace lsta
}  // namespace kelarc
