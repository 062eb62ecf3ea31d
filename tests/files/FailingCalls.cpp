#include "files/FailingCalls.h"

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace files_test {

namespace {

struct Plan
{
    std::string call{};
    int left = 0;
    int error = 0;
    bool isShort = false;
    bool hasFailed = false;
};
Plan g_plan;

bool fails(const char* call)
{
    if (g_plan.call != call || g_plan.left == 0 || --g_plan.left > 0)
        return false;
    g_plan.hasFailed = true;
    errno = g_plan.error;
    return true;
}

template <typename Function>
Function original(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FailingCalls::FailingCalls(const std::string& call, int at, int error, bool isShort)
{
    g_plan = {call, at, error, isShort, false};
}

FailingCalls::~FailingCalls()
{
    g_plan = {};
}

bool FailingCalls::hasFailed() const
{
    return g_plan.hasFailed;
}

}  // namespace files_test

using files_test::fails;
using files_test::g_plan;
using files_test::original;

extern "C" int openat(int folder, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fails("openat") ? -1 : original<int (*)(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
}

extern "C" ssize_t write(int descriptor, const void* bytes, size_t size)
{
    if (fails("write"))
        return -1;
    const size_t taken = g_plan.isShort && size > 1 ? 1 : size;
    return original<ssize_t (*)(int, const void*, size_t)>("write")(descriptor, bytes, taken);
}

extern "C" int fsync(int descriptor)
{
    return fails("fsync") ? -1 : original<int (*)(int)>("fsync")(descriptor);
}

extern "C" int fchmod(int descriptor, mode_t mode) noexcept
{
    return fails("fchmod") ? -1 : original<int (*)(int, mode_t)>("fchmod")(descriptor, mode);
}

extern "C" int close(int descriptor)
{
    const int outcome = original<int (*)(int)>("close")(descriptor);
    return fails("close") ? -1 : outcome;
}

extern "C" int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept
{
    return fails("renameat")
               ? -1
               : original<int (*)(int, const char*, int, const char*)>("renameat")(fromFolder, from, toFolder, to);
}
