#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

/// One worker thread that work can be handed to, by the means that the peer stands for.
///
/// Work is a function and its argument, so that every peer stores the same in the form that is its own.
class Peer
{
public:
    using Work = void (*)(void*);

    Peer() = default;
    virtual ~Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// From any thread. Never more than 128 are handed over and not done.
    virtual void post(Work work, void* argument) = 0;
};

std::unique_ptr<Peer> makeKelArcQueue();
/// The machine's limit: room for one, a mutex and a condition variable.
std::unique_ptr<Peer> makeConditionVariable();
/// The same on the bare system call.
std::unique_ptr<Peer> makeFutex();
/// The least queue that there can be: a ring of 128, a mutex and two condition variables.
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

/// KelArc first: the one that the others are compared with.
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
