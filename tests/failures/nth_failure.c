// Preloaded into a program, lets its nth call of one function of the C library fail. NTH_FAILURE says which:
//
//     FUNCTION N ERROR HOW FILE
//
// ERROR is an errno. HOW is "once"; "on" for the nth call and all after it; "short" for a call that takes or gives one
// byte and succeeds. FILE gets the name of the function when the call comes, and at the end of the program how many
// descriptors are open. With * as FUNCTION nothing fails, and FILE gets the name of every function that is called.
//
// Reading and writing on the standard descriptors does not count, since the program reports failures there. Child
// programs are not affected.

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

static char g_function[40];
static int g_at;
static int g_error;
static char g_how[8];
static char g_report[4096];
static atomic_int g_calls;

static void report(const char* function)
{
    const int file = (int)syscall(SYS_openat, AT_FDCWD, g_report, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    char line[48];
    const int length = snprintf(line, sizeof line, "%s\n", function);
    syscall(SYS_write, file, line, (size_t)length);
    syscall(SYS_close, file);
}

// How many descriptors are open at the end, for what is open then has been forgotten.
__attribute__((destructor)) static void count_descriptors(void)
{
    if (g_function[0] == '\0')
        return;
    int open = 0;
    for (int file = 0; file < 1024; ++file)
        open += syscall(SYS_fcntl, file, F_GETFD) >= 0;
    char line[32];
    snprintf(line, sizeof line, "descriptors %d", open);
    report(line);
}

__attribute__((constructor)) static void read_plan(void)
{
    const char* const plan = getenv("NTH_FAILURE");
    if (plan == NULL || sscanf(plan, "%39s %d %d %7s %4095s", g_function, &g_at, &g_error, g_how, g_report) != 5)
        g_function[0] = '\0';
    unsetenv("NTH_FAILURE");
    unsetenv("LD_PRELOAD");
}

static bool comes(const char* function)
{
    if (strcmp(g_function, "*") == 0)
        report(function);
    if (strcmp(g_function, function) != 0)
        return false;
    const int call = atomic_fetch_add(&g_calls, 1) + 1;
    if (call != g_at && !(call > g_at && strcmp(g_how, "on") == 0))
        return false;
    report(function);
    return true;
}

static bool is_short(void)
{
    return strcmp(g_how, "short") == 0;
}

static bool fails(const char* function)
{
    if (!comes(function))
        return false;
    errno = g_error;
    return true;
}

#define ORIGINAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

// What answers -1 and sets errno.
#define FAILING(name, parameters, arguments)                                                                           \
    int name parameters                                                                                                \
    {                                                                                                                  \
        return fails(#name) ? -1 : ORIGINAL(name) arguments;                                                           \
    }

// What answers the error itself.
#define ANSWERING(name, parameters, arguments)                                                                         \
    int name parameters                                                                                                \
    {                                                                                                                  \
        return comes(#name) ? g_error : ORIGINAL(name) arguments;                                                      \
    }

// What passes bytes on.
#define PASSING(name, descriptor, size, parameters, arguments)                                                         \
    ssize_t name parameters                                                                                            \
    {                                                                                                                  \
        if (descriptor > STDERR_FILENO && comes(#name)) {                                                              \
            if (!is_short()) {                                                                                         \
                errno = g_error;                                                                                       \
                return -1;                                                                                             \
            }                                                                                                          \
            size = size > 1 ? 1 : size;                                                                                \
        }                                                                                                              \
        return ORIGINAL(name) arguments;                                                                               \
    }

PASSING(read, file, size, (int file, void* bytes, size_t size), (file, bytes, size))
PASSING(write, file, size, (int file, const void* bytes, size_t size), (file, bytes, size))
PASSING(recv, file, size, (int file, void* bytes, size_t size, int flags), (file, bytes, size, flags))
PASSING(send, file, size, (int file, const void* bytes, size_t size, int flags), (file, bytes, size, flags))

int open(const char* path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
    va_end(list);
    return fails("open") ? -1 : ORIGINAL(open)(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
    va_end(list);
    return fails("openat") ? -1 : ORIGINAL(openat)(folder, path, flags, mode);
}

int fcntl(int file, int command, ...)
{
    va_list list;
    va_start(list, command);
    void* const argument = va_arg(list, void*);
    va_end(list);
    return fails("fcntl") ? -1 : ORIGINAL(fcntl)(file, command, argument);
}

int ioctl(int file, unsigned long request, ...)
{
    va_list list;
    va_start(list, request);
    void* const argument = va_arg(list, void*);
    va_end(list);
    return fails("ioctl") ? -1 : ORIGINAL(ioctl)(file, request, argument);
}

// A descriptor is closed whatever closing answers.
int close(int file)
{
    const bool is_it = comes("close");
    const int outcome = ORIGINAL(close)(file);
    if (!is_it)
        return outcome;
    errno = g_error;
    return -1;
}

FAILING(accept, (int file, struct sockaddr* address, socklen_t* size), (file, address, size))
FAILING(bind, (int file, const struct sockaddr* address, socklen_t size), (file, address, size))
FAILING(connect, (int file, const struct sockaddr* address, socklen_t size), (file, address, size))
FAILING(epoll_create1, (int flags), (flags))
FAILING(epoll_ctl, (int set, int operation, int file, struct epoll_event* event), (set, operation, file, event))
FAILING(epoll_wait, (int set, struct epoll_event* events, int most, int limit), (set, events, most, limit))
FAILING(eventfd, (unsigned count, int flags), (count, flags))
FAILING(fchmod, (int file, mode_t mode), (file, mode))
FAILING(fchown, (int file, uid_t user, gid_t group), (file, user, group))
FAILING(flock, (int file, int operation), (file, operation))
FAILING(fstat, (int file, struct stat* info), (file, info))
FAILING(fstatat, (int folder, const char* path, struct stat* info, int flags), (folder, path, info, flags))
FAILING(fsync, (int file), (file))
FAILING(ftruncate, (int file, off_t size), (file, size))
FAILING(getsockopt, (int file, int level, int name, void* value, socklen_t* size), (file, level, name, value, size))
FAILING(grantpt, (int file), (file))
FAILING(listen, (int file, int waiting), (file, waiting))
FAILING(lstat, (const char* path, struct stat* info), (path, info))
FAILING(mkdir, (const char* path, mode_t mode), (path, mode))
FAILING(pipe, (int files[2]), (files))
FAILING(pipe2, (int files[2], int flags), (files, flags))
FAILING(poll, (struct pollfd * files, nfds_t count, int limit), (files, count, limit))
FAILING(posix_openpt, (int flags), (flags))
FAILING(remove, (const char* path), (path))
FAILING(rename, (const char* from, const char* to), (from, to))
FAILING(renameat, (int from_folder, const char* from, int to_folder, const char* to),
        (from_folder, from, to_folder, to))
FAILING(setsockopt, (int file, int level, int name, const void* value, socklen_t size),
        (file, level, name, value, size))
FAILING(shutdown, (int file, int direction), (file, direction))
FAILING(sigaction, (int number, const struct sigaction* action, struct sigaction* before), (number, action, before))
FAILING(socket, (int domain, int type, int protocol), (domain, type, protocol))
FAILING(stat, (const char* path, struct stat* info), (path, info))
FAILING(symlink, (const char* target, const char* path), (target, path))
FAILING(tcflush, (int file, int queue), (file, queue))
FAILING(tcgetattr, (int file, struct termios* mode), (file, mode))
FAILING(tcsetattr, (int file, int when, const struct termios* mode), (file, when, mode))
FAILING(timerfd_create, (clockid_t clock, int flags), (clock, flags))
FAILING(timerfd_settime, (int file, int flags, const struct itimerspec* time, struct itimerspec* before),
        (file, flags, time, before))
FAILING(unlink, (const char* path), (path))
FAILING(unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
FAILING(unlockpt, (int file), (file))
FAILING(waitpid, (pid_t process, int* status, int options), (process, status, options))

ssize_t getrandom(void* bytes, size_t size, unsigned flags)
{
    return fails("getrandom") ? -1 : ORIGINAL(getrandom)(bytes, size, flags);
}
ssize_t sendmsg(int file, const struct msghdr* message, int flags)
{
    return fails("sendmsg") ? -1 : ORIGINAL(sendmsg)(file, message, flags);
}
ssize_t recvmsg(int file, struct msghdr* message, int flags)
{
    return fails("recvmsg") ? -1 : ORIGINAL(recvmsg)(file, message, flags);
}
ssize_t readv(int file, const struct iovec* parts, int count)
{
    return fails("readv") ? -1 : ORIGINAL(readv)(file, parts, count);
}
ssize_t writev(int file, const struct iovec* parts, int count)
{
    return fails("writev") ? -1 : ORIGINAL(writev)(file, parts, count);
}
pid_t fork(void)
{
    return fails("fork") ? -1 : ORIGINAL(fork)();
}
char* mkdtemp(char* path)
{
    return fails("mkdtemp") ? NULL : ORIGINAL(mkdtemp)(path);
}
void* dlopen(const char* path, int flags)
{
    return comes("dlopen") ? NULL : ORIGINAL(dlopen)(path, flags);
}

ANSWERING(posix_spawnp,
          (pid_t * process, const char* path, const posix_spawn_file_actions_t* actions,
           const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]),
          (process, path, actions, attributes, arguments, environment))
ANSWERING(pthread_create, (pthread_t * thread, const pthread_attr_t* attributes, void* (*body)(void*), void* argument),
          (thread, attributes, body, argument))
ANSWERING(ptsname_r, (int file, char* name, size_t size), (file, name, size))
