#include "FailingCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <new>

// The names below stand in the program, so that the dynamic linker finds them there before the C
// library's own, also for what the shared libraries call.
#define TK_REPLACES extern "C" __attribute__((visibility("default")))

// The function of that name which this program's own one hides.
#define TK_HIDDEN(name) TK_HIDDEN_AS(decltype(&(name)), #name)
#define TK_HIDDEN_AS(Type, name)                    \
    static std::atomic<void*> knownHidden{nullptr}; \
    const auto hidden = reinterpret_cast<Type>(Hidden(knownHidden, name))

namespace {

constexpr int kNothing = -1;
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

std::atomic<int> failingKind{kNothing};
std::atomic<std::size_t> callsUntilFailure{0};
std::atomic<bool> everyThread{false};
std::atomic<bool> hasFailed{false};
std::atomic<std::size_t> blocksHeld{0};
thread_local unsigned sparing = 0;
thread_local bool isChosen = false;

bool Fails(Call kind, int error) {
    if (failingKind != static_cast<int>(kind) || sparing != 0 || (!everyThread && !isChosen) ||
        --callsUntilFailure != 0) {
        return false;
    }
    hasFailed = true;
    errno = error;
    return true;
}

// Looked up once. A local static would do, but guards itself with what may not be ready yet.
void* Hidden(std::atomic<void*>& known, const char* name) {
    if (void* const hidden = known) {
        return hidden;
    }
    const SparedCalls spared;
    void* const hidden = dlsym(RTLD_NEXT, name);
    known = hidden;
    return hidden;
}

bool IsSocket(int descriptor) {
    const SparedCalls spared;
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode);
}

}  // namespace

FailingCall::FailingCall(Call kind, std::size_t number, FailingOn threads) {
    callsUntilFailure = number;
    everyThread = threads == FailingOn::EveryThread;
    hasFailed = false;
    isChosen = true;
    failingKind = static_cast<int>(kind);
}

FailingCall::~FailingCall() {
    failingKind = kNothing;
    isChosen = false;
}

bool FailingCall::HasFailed() {
    return hasFailed;
}

CountedCalls::CountedCalls(Call kind) : m_failing(kind, kNever) {}

std::size_t CountedCalls::SoFar() {
    return kNever - callsUntilFailure;
}

SparedCalls::SparedCalls() {
    ++sparing;
}

SparedCalls::~SparedCalls() {
    --sparing;
}

std::size_t BlocksHeld() {
    return blocksHeld;
}

// Where a sanitizer brings a malloc of its own, these fail in its place.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (TK_HAS_SANITIZER && Fails(Call::Allocation, ENOMEM)) {
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) {
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

#if !TK_HAS_SANITIZER

// The C library's own functions go by these names besides.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);
extern "C" void __libc_free(void* memory);
// NOLINTEND(bugprone-reserved-identifier)

namespace {

void* Held(void* memory) {
    blocksHeld += memory != nullptr ? 1 : 0;
    return memory;
}

}  // namespace

// The C library names its parameters as no other code may.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
TK_REPLACES void* malloc(std::size_t size) noexcept {
    return Fails(Call::Allocation, ENOMEM) ? nullptr : Held(__libc_malloc(size));
}

TK_REPLACES void* calloc(std::size_t count, std::size_t size) noexcept {
    return Fails(Call::Allocation, ENOMEM) ? nullptr : Held(__libc_calloc(count, size));
}

TK_REPLACES void* realloc(void* memory, std::size_t size) noexcept {
    if (Fails(Call::Allocation, ENOMEM)) {
        return nullptr;
    }
    if (memory == nullptr) {
        return Held(__libc_malloc(size));
    }
    void* const moved = __libc_realloc(memory, size);
    blocksHeld -= size == 0 ? 1 : 0;
    return moved;
}

TK_REPLACES void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Fails(Call::Allocation, ENOMEM) ? nullptr : Held(__libc_memalign(alignment, size));
}

TK_REPLACES int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
    void* const held = aligned_alloc(alignment, size);
    *memory = held != nullptr ? held : *memory;
    // cppcheck-suppress memleak ; it is the caller's now
    return held != nullptr ? 0 : ENOMEM;
}

TK_REPLACES void free(void* memory) noexcept {
    blocksHeld -= memory != nullptr ? 1 : 0;
    __libc_free(memory);
}

#endif

TK_REPLACES int open(const char* path, int flags, ...) {
    TK_HIDDEN(open);
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Fails(Call::Open, EMFILE) ? -1 : hidden(path, flags, mode);
}

TK_REPLACES FILE* fopen(const char* path, const char* mode) {
    TK_HIDDEN(fopen);
    return Fails(Call::Open, EMFILE) ? nullptr : hidden(path, mode);
}

TK_REPLACES FILE* fopen64(const char* path, const char* mode) {
    TK_HIDDEN(fopen64);
    return Fails(Call::Open, EMFILE) ? nullptr : hidden(path, mode);
}

TK_REPLACES ssize_t read(int descriptor, void* bytes, std::size_t count) {
    TK_HIDDEN(read);
    return Fails(Call::Read, EIO) ? -1 : hidden(descriptor, bytes, count);
}

TK_REPLACES ssize_t write(int descriptor, const void* bytes, std::size_t count) {
    TK_HIDDEN(write);
    return Fails(Call::Write, ENOSPC) ? -1 : hidden(descriptor, bytes, count);
}

TK_REPLACES ssize_t writev(int descriptor, const iovec* pieces, int count) {
    TK_HIDDEN(writev);
    return Fails(Call::Write, ENOSPC) ? -1 : hidden(descriptor, pieces, count);
}

TK_REPLACES int close(int descriptor) {
    TK_HIDDEN(close);
    const int result = hidden(descriptor);
    return Fails(Call::Close, EIO) ? -1 : result;
}

TK_REPLACES int fclose(FILE* file) {
    TK_HIDDEN(fclose);
    const int result = hidden(file);
    return Fails(Call::Close, EIO) ? EOF : result;
}

TK_REPLACES int stat(const char* path, struct stat* status) noexcept {
    using Stat = int (*)(const char*, struct stat*);
    TK_HIDDEN_AS(Stat, "stat");
    return Fails(Call::Status, EACCES) ? -1 : hidden(path, status);
}

TK_REPLACES int fstat(int descriptor, struct stat* status) noexcept {
    TK_HIDDEN(fstat);
    return Fails(Call::Status, EIO) ? -1 : hidden(descriptor, status);
}

TK_REPLACES void* mmap(void* address, std::size_t size, int protection, int flags, int descriptor,
                       off_t offset) noexcept {
    TK_HIDDEN(mmap);
    return Fails(Call::Map, ENOMEM) ? MAP_FAILED
                                    : hidden(address, size, protection, flags, descriptor, offset);
}

TK_REPLACES int munmap(void* address, std::size_t size) noexcept {
    TK_HIDDEN(munmap);
    const int result = hidden(address, size);
    return Fails(Call::Unmap, ENOMEM) ? -1 : result;
}

TK_REPLACES int mkdir(const char* path, mode_t mode) noexcept {
    TK_HIDDEN(mkdir);
    return Fails(Call::MakeDirectory, ENOSPC) ? -1 : hidden(path, mode);
}

TK_REPLACES int socket(int family, int type, int protocol) noexcept {
    TK_HIDDEN(socket);
    return Fails(Call::Socket, EMFILE) ? -1 : hidden(family, type, protocol);
}

TK_REPLACES int connect(int descriptor, const sockaddr* address, socklen_t size) {
    TK_HIDDEN(connect);
    return Fails(Call::Connect, ENETUNREACH) ? -1 : hidden(descriptor, address, size);
}

TK_REPLACES int setsockopt(int descriptor, int level, int name, const void* value,
                           socklen_t size) noexcept {
    TK_HIDDEN(setsockopt);
    return Fails(Call::SocketOption, ENOBUFS) ? -1 : hidden(descriptor, level, name, value, size);
}

TK_REPLACES int getsockopt(int descriptor, int level, int name, void* value,
                           socklen_t* size) noexcept {
    TK_HIDDEN(getsockopt);
    return Fails(Call::SocketOption, ENOBUFS) ? -1 : hidden(descriptor, level, name, value, size);
}

TK_REPLACES int getsockname(int descriptor, sockaddr* address, socklen_t* size) noexcept {
    TK_HIDDEN(getsockname);
    return Fails(Call::SocketOption, ENOBUFS) ? -1 : hidden(descriptor, address, size);
}

TK_REPLACES int getpeername(int descriptor, sockaddr* address, socklen_t* size) noexcept {
    TK_HIDDEN(getpeername);
    return Fails(Call::SocketOption, ENOBUFS) ? -1 : hidden(descriptor, address, size);
}

TK_REPLACES int fcntl(int descriptor, int command, ...) {
    TK_HIDDEN(fcntl);
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return Fails(Call::SocketControl, EBADF) ? -1 : hidden(descriptor, command, argument);
}

TK_REPLACES int ioctl(int descriptor, unsigned long request, ...) noexcept {
    TK_HIDDEN(ioctl);
    std::va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return Fails(Call::SocketControl, EBADF) ? -1 : hidden(descriptor, request, argument);
}

TK_REPLACES ssize_t send(int descriptor, const void* bytes, std::size_t count, int flags) {
    TK_HIDDEN(send);
    return Fails(Call::Send, EPIPE) ? -1 : hidden(descriptor, bytes, count, flags);
}

TK_REPLACES ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    TK_HIDDEN(sendmsg);
    return Fails(Call::Send, EPIPE) ? -1 : hidden(descriptor, message, flags);
}

TK_REPLACES ssize_t recv(int descriptor, void* bytes, std::size_t count, int flags) {
    TK_HIDDEN(recv);
    return Fails(Call::Receive, ECONNRESET) ? -1 : hidden(descriptor, bytes, count, flags);
}

TK_REPLACES ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    TK_HIDDEN(recvmsg);
    return Fails(Call::Receive, ECONNRESET) ? -1 : hidden(descriptor, message, flags);
}

TK_REPLACES int epoll_create(int size) noexcept {
    TK_HIDDEN(epoll_create);
    return Fails(Call::Poller, EMFILE) ? -1 : hidden(size);
}

TK_REPLACES int epoll_create1(int flags) noexcept {
    TK_HIDDEN(epoll_create1);
    return Fails(Call::Poller, EMFILE) ? -1 : hidden(flags);
}

TK_REPLACES int epoll_wait(int poller, epoll_event* events, int count, int timeout) {
    TK_HIDDEN(epoll_wait);
    return Fails(Call::Poller, EINTR) ? -1 : hidden(poller, events, count, timeout);
}

TK_REPLACES int epoll_ctl(int poller, int command, int descriptor, epoll_event* event) noexcept {
    TK_HIDDEN(epoll_ctl);
    return command == EPOLL_CTL_ADD && IsSocket(descriptor) && Fails(Call::PollerEntry, ENOSPC)
               ? -1
               : hidden(poller, command, descriptor, event);
}

TK_REPLACES int eventfd(unsigned count, int flags) noexcept {
    TK_HIDDEN(eventfd);
    return Fails(Call::WakeUp, EMFILE) ? -1 : hidden(count, flags);
}

TK_REPLACES int timerfd_create(int clock, int flags) noexcept {
    TK_HIDDEN(timerfd_create);
    return Fails(Call::Timer, EMFILE) ? -1 : hidden(clock, flags);
}

TK_REPLACES int timerfd_settime(int timer, int flags, const itimerspec* time,
                                itimerspec* previous) noexcept {
    TK_HIDDEN(timerfd_settime);
    return Fails(Call::Timer, EINVAL) ? -1 : hidden(timer, flags, time, previous);
}

TK_REPLACES int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                               void* (*function)(void*), void* argument) noexcept {
    TK_HIDDEN(pthread_create);
    return Fails(Call::Thread, EAGAIN) ? EAGAIN : hidden(thread, attributes, function, argument);
}

TK_REPLACES int gettimeofday(timeval* time, void* zone) noexcept {
    TK_HIDDEN(gettimeofday);
    return Fails(Call::Clock, EFAULT) ? -1 : hidden(time, zone);
}

TK_REPLACES std::tm* localtime_r(const std::time_t* time, std::tm* local) noexcept {
    TK_HIDDEN(localtime_r);
    return Fails(Call::LocalTime, EOVERFLOW) ? nullptr : hidden(time, local);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
