#pragma once

#include <cstddef>
#include <cstdint>

/// The kinds of calls that can be made to fail in a program that contains this. Each kind covers
/// all of its functions. A closing or unmapping call does its work all the same and then reports a
/// failure, as the kernel does when data that it still had to write is lost.
enum class Call : std::uint8_t {
    Allocation,     ///< operator new; without a sanitizer malloc, calloc and realloc as well
    Open,           ///< open, fopen
    Read,           ///< read
    Write,          ///< write, writev
    Close,          ///< close, fclose
    Status,         ///< stat, fstat
    Map,            ///< mmap
    Unmap,          ///< munmap
    MakeDirectory,  ///< mkdir
    Socket,         ///< socket
    Connect,        ///< connect
    SocketOption,   ///< setsockopt, getsockopt, getsockname, getpeername
    SocketControl,  ///< fcntl, ioctl
    Send,           ///< send, sendmsg
    Receive,        ///< recv, recvmsg
    Poller,         ///< epoll_create, epoll_create1, epoll_wait
    PollerEntry,    ///< epoll_ctl that adds a socket
    WakeUp,         ///< eventfd
    Timer,          ///< timerfd_create, timerfd_settime
    Thread,         ///< pthread_create
    Clock,          ///< gettimeofday
    LocalTime,      ///< localtime_r
};

enum class FailingOn : std::uint8_t { ThisThread, EveryThread };

/// While this object lives, makes one call fail: the one with that number, counted from 1, among
/// the calls of its kind from now on. Only one such object may exist at a time.
class FailingCall {
public:
    FailingCall(Call kind, std::size_t number, FailingOn threads = FailingOn::ThisThread);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    /// Whether there was a call of that number.
    [[nodiscard]] static bool HasFailed();
};

/// Counts the calling thread's calls of a kind for as long as it lives. There is no FailingCall at
/// the same time.
class CountedCalls {
public:
    explicit CountedCalls(Call kind);

    /// How many calls there were.
    [[nodiscard]] static std::size_t SoFar();

private:
    FailingCall m_failing;
};

/// For a scope, the calling thread's calls neither fail nor count, because they are the test's own.
class SparedCalls {
public:
    SparedCalls();
    ~SparedCalls();
    SparedCalls(const SparedCalls&) = delete;
    SparedCalls& operator=(const SparedCalls&) = delete;
};

/// How many blocks of memory the program holds. Always 0 under a sanitizer, which finds leaks
/// itself.
[[nodiscard]] std::size_t BlocksHeld();
