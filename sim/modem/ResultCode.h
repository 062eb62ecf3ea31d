#pragma once

namespace arcsim::modem {

/// The result codes that the simulated modem itself answers; a scenario may inject any other.
enum ResultCode : int
{
    kSuccess = 0,
    kNotOpened = 1,
    kWrongParameter = 13,
    kMissingParameter = 14,
    kTemporarilyUnavailable = 15,
    kNotFound = 16,
    kDenied = 21,
    kNotSupported = 24,
    kNoConnection = 31,
    kGenericError = 32,
    kDidNotFit = 33,
    kNotAllowed = 38,
};

constexpr int kHighestResultCode = 39;

}  // namespace arcsim::modem
