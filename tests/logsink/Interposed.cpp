#include "logsink/Interposed.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace interposed {
namespace {

struct Failing
{
    std::atomic<unsigned> left{0};
    std::atomic<unsigned> count{0};
    std::atomic<int> error{0};
};

std::atomic<Write::Hook*> g_write{nullptr};
Failing g_failing[4];

Failing& of(Call call)
{
    return g_failing[static_cast<std::size_t>(call)];
}

/// Counts; true when the call is to fail, with errno set.
bool fails(Call call)
{
    Failing& failing = of(call);
    ++failing.count;
    if (failing.left == 0)
        return false;
    --failing.left;
    errno = failing.error;
    return true;
}

/// The next definition of the function: the system's, or a sanitizer's that goes on to it.
template <typename Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

Write::Write(Hook hook) : m_hook(std::move(hook))
{
    g_write = &m_hook;
}

Write::~Write()
{
    g_write = nullptr;
}

ssize_t Write::real(int descriptor, const void* data, std::size_t size)
{
    static const auto system = next<ssize_t (*)(int, const void*, std::size_t)>("write");
    return system(descriptor, data, size);
}

void fail(Call call, int error, unsigned times)
{
    of(call).error = error;
    of(call).count = 0;
    of(call).left = times;
}

unsigned count(Call call)
{
    return of(call).count;
}

void forget()
{
    for (const Call call : {Call::memfdCreate, Call::addSeals, Call::moveDescriptor, Call::sendmsg})
        fail(call, 0, 0);
}

}  // namespace interposed

extern "C" {

ssize_t write(int descriptor, const void* data, size_t size)
{
    const auto* const hook = interposed::g_write.load();
    return hook == nullptr ? interposed::Write::real(descriptor, data, size) : (*hook)(descriptor, data, size);
}

int memfd_create(const char* name, unsigned flags) noexcept
{
    if (interposed::fails(interposed::Call::memfdCreate))
        return -1;
    return interposed::next<int (*)(const char*, unsigned)>("memfd_create")(name, flags);
}

int fcntl(int descriptor, int command, ...)
{
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);  // as the system's library reads it
    va_end(arguments);
    if (command == F_ADD_SEALS && interposed::fails(interposed::Call::addSeals))
        return -1;
    if (command == F_DUPFD_CLOEXEC && interposed::fails(interposed::Call::moveDescriptor))
        return -1;
    return interposed::next<int (*)(int, int, ...)>("fcntl")(descriptor, command, argument);
}

ssize_t sendmsg(int socket, const msghdr* message, int flags)
{
    if (interposed::fails(interposed::Call::sendmsg))
        return -1;
    return interposed::next<ssize_t (*)(int, const msghdr*, int)>("sendmsg")(socket, message, flags);
}
}
