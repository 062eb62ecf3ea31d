#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

/// One worker thread that takes work, built with the peer's own means.
///
/// Work is a function and its argument, so every peer stores the same data in its own form.
class Peer
{
public:
    using Work = void (*)(void*);

    Peer() = default;
    virtual ~Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// May be called from any thread. At most 128 pieces of work are unfinished at a time.
    virtual void post(Work work, void* argument) = 0;
};

std::unique_ptr<Peer> makeKelArcQueue();
/// The machine's limit: room for one, a mutex and a condition variable.
std::unique_ptr<Peer> makeConditionVariable();
/// The same on the bare futex system call.
std::unique_ptr<Peer> makeFutex();
/// The simplest queue: a ring of 128, a mutex and two condition variables.
std::unique_ptr<Peer> makeRing();
std::unique_ptr<Peer> makeAsio();
/// The handler owns a name of 59 characters, as the library's tasks do.
std::unique_ptr<Peer> makeAsioWithName();
std::unique_ptr<Peer> makeGlib();
std::unique_ptr<Peer> makeLibuv();
std::unique_ptr<Peer> makeQt();

constexpr const char* kKelArc = "KelArc";
constexpr const char* kConditionVariable = "condition variable";
constexpr const char* kFutex = "futex";
constexpr const char* kRing = "ring of 128";
constexpr const char* kAsio = "asio, timer";
constexpr const char* kAsioWithName = "asio, timer, name";
constexpr const char* kGlib = "GLib";
constexpr const char* kLibuv = "libuv";
constexpr const char* kQt = "Qt 5";

struct PeerKind
{
    const char* name;
    std::unique_ptr<Peer> (*make)();
    bool isQueue;  ///< holds more than one
};

/// All peers. KelArc is first, since the others are compared with it.
constexpr PeerKind kPeers[] = {
    {kKelArc, makeKelArcQueue, true},
    {kConditionVariable, makeConditionVariable, false},
    {kFutex, makeFutex, false},
    {kRing, makeRing, true},
    {kAsio, makeAsio, true},
    {kAsioWithName, makeAsioWithName, true},
    {kGlib, makeGlib, true},
    {kLibuv, makeLibuv, true},
    {kQt, makeQt, true},
};

}  // namespace bench
