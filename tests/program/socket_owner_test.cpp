// At the default path, no other user's daemon is asked, since another user could have created the socket first.

#include "arcsim/ControlClient.h"
#include "arcsim/ExitCode.h"

#include "files/Folder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

std::optional<uid_t> g_owner;  ///< what the system is made to say

}  // namespace

extern "C" int getsockopt(int socket, int level, int name, void* value, socklen_t* size) noexcept
{
    using Function = int (*)(int, int, int, void*, socklen_t*);
    const int outcome = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getsockopt"))(socket, level, name, value, size);
    if (g_owner && level == SOL_SOCKET && name == SO_PEERCRED)
        static_cast<ucred*>(value)->uid = *g_owner;
    return outcome;
}

namespace {

using arcsim::program::ControlClient;
using arcsim::program::ControlFailure;
using std::chrono::seconds;

/// A socket that somebody listens at.
class Listener
{
public:
    Listener()
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket, 10), 0);
    }
    ~Listener() { ::close(m_socket); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    std::string path() const { return m_folder.path("s"); }

private:
    const files_test::Folder m_folder;
    const int m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

std::string errorOf(const arcsim::program::SocketPath& path, std::optional<uid_t> owner)
{
    g_owner = owner;
    std::string text = "asked";
    try {
        const ControlClient client(path, seconds(10));
    } catch (const ControlFailure& failure) {
        EXPECT_EQ(failure.exitCode(), arcsim::program::kExitNoDaemon);
        text = failure.what();
    }
    g_owner.reset();
    return text;
}

TEST(ADaemonAtTheDefaultPath, IsAskedIfItIsTheUsersOrRoots)
{
    const Listener listener;
    EXPECT_EQ(errorOf({listener.path(), false}, std::nullopt), "asked");
    EXPECT_EQ(errorOf({listener.path(), false}, ::geteuid()), "asked");
    EXPECT_EQ(errorOf({listener.path(), false}, 0), "asked");
}

TEST(ADaemonAtTheDefaultPath, OfAnotherUserIsNotAsked)
{
    const Listener listener;
    EXPECT_EQ(errorOf({listener.path(), false}, ::geteuid() + 1),
              "the daemon at " + listener.path() + " belongs to the user " + std::to_string(::geteuid() + 1) +
                  " and not to you, so it is not asked; to ask it all the same, name it by --socket or ARCSIM_SOCKET");
}

TEST(ADaemonThatTheUserNames, IsAskedWhosesoeverItIs)
{
    const Listener listener;
    EXPECT_EQ(errorOf({listener.path(), true}, ::geteuid() + 1), "asked");
}

TEST(ASocketsPath, IsChosenOrTheDefaultOne)
{
    ::setenv("ARCSIM_SOCKET", "/run/a.sock", 1);
    EXPECT_TRUE(arcsim::program::socketPath("given").isChosen);
    EXPECT_TRUE(arcsim::program::socketPath("").isChosen);
    EXPECT_EQ(arcsim::program::socketPath("").path, "/run/a.sock");
    ::setenv("ARCSIM_SOCKET", "", 1);
    ::setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    EXPECT_FALSE(arcsim::program::socketPath("").isChosen);
    EXPECT_EQ(arcsim::program::socketPath("").path, "/run/user/7/arcsim.sock");
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_FALSE(arcsim::program::socketPath("").isChosen);
    EXPECT_EQ(arcsim::program::socketPath("").path, "/tmp/arcsim-" + std::to_string(::getuid()) + ".sock");
    ::unsetenv("ARCSIM_SOCKET");
}

}  // namespace
