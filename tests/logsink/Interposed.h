#pragma once

#include <cstddef>
#include <functional>
#include <sys/types.h>

// The executable supplies some calls of the system, which the header's code finds first. Without a hook they are the
// system's own.

namespace interposed {

/// While it lives, write() of this process is `hook`. One at a time; to be made and destroyed while nothing is logged.
class Write
{
public:
    using Hook = std::function<ssize_t(int, const void*, std::size_t)>;
    explicit Write(Hook hook);
    ~Write();
    Write(const Write&) = delete;
    Write& operator=(const Write&) = delete;

    /// The system's.
    static ssize_t real(int descriptor, const void* data, std::size_t size);

private:
    Hook m_hook;
};

/// Calls that can be made to fail.
enum class Call
{
    memfdCreate,
    addSeals,
    moveDescriptor,
    sendmsg,
};

/// The next `times` such calls of this process fail with `error`.
void fail(Call call, int error, unsigned times);
/// How many there were since fail() or forget(), failed ones included.
unsigned count(Call call);
/// All calls are the system's again.
void forget();

}  // namespace interposed
