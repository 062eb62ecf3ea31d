#pragma once

// Lets one of the calls that reach the file system fail, as a full disk or a lost storage would.

#include <string>

namespace files_test {

/// From its construction on call number `at` (from 1) of `call` fails with `error`; `write` in between takes one byte
/// at a time if `isShort`. One at a time.
class FailingCalls
{
public:
    FailingCalls(const std::string& call, int at, int error, bool isShort = false);
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    /// Whether there was such a call.
    bool hasFailed() const;
};

}  // namespace files_test
