// The calls of the C library that a program makes for a connection. These go before the library's
// own: they make the same call, and tell what came of it.

#include "connections.h"

#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

// The version of dlsym() that every C library has; before 2.34 it was in libdl.
#if defined __x86_64__
__asm__(".symver dlsym, dlsym@GLIBC_2.2.5");
#elif defined __arm__
__asm__(".symver dlsym, dlsym@GLIBC_2.4");
#endif

namespace {

// `own` is the function here that goes before the next one of that name, which gets the same
// arguments.
template<auto *own, typename... Arguments>
auto next(const char *name, Arguments... arguments)
{
    static std::atomic<void *> kept{nullptr};
    void *found = kept.load(std::memory_order_relaxed);
    if (found == nullptr) {
        found = dlsym(RTLD_NEXT, name);
        kept.store(found, std::memory_order_relaxed);
    }
    return reinterpret_cast<decltype(own)>(found)(arguments...);
}

template<auto *own, auto returned, typename Bytes, typename... Flags>
ssize_t transfer(const char *name, int descriptor, Bytes *bytes, size_t size, Flags... flags)
{
    // Nothing received means that the peer has closed, but not where nothing was asked for.
    if (size == 0 || !isTraced(descriptor))
        return next<own>(name, descriptor, bytes, size, flags...);
    const std::int64_t since = ticks();
    const ssize_t result = next<own>(name, descriptor, bytes, size, flags...);
    returned(descriptor, {static_cast<const char *>(bytes), result, errno, since});
    return result;
}

} // namespace

#pragma GCC visibility push(default)
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int connect(int descriptor, const sockaddr *peer, socklen_t length)
{
    const std::int64_t since = ticks();
    const int result = next<connect>("connect", descriptor, peer, length);
    connectReturned(descriptor, peer, length, result == 0 ? 0 : errno, since);
    return result;
}

int close(int descriptor)
{
    // Before it is closed: then another thread may get the number for something else.
    if (isTraced(descriptor))
        closes(descriptor);
    return next<close>("close", descriptor);
}

int getsockopt(int descriptor, int level, int option, void *value, socklen_t *length) noexcept
{
    const int result = next<getsockopt>("getsockopt", descriptor, level, option, value, length);
    if (result == 0 && level == SOL_SOCKET && option == SO_ERROR && isTraced(descriptor))
        errorAsked(descriptor, *static_cast<const int *>(value));
    return result;
}

ssize_t send(int descriptor, const void *bytes, size_t size, int flags)
{
    return transfer<send, sendReturned>("send", descriptor, bytes, size, flags);
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    return transfer<write, sendReturned>("write", descriptor, bytes, size);
}

ssize_t recv(int descriptor, void *bytes, size_t size, int flags)
{
    // What is only looked at, or thrown away, has not been received.
    if ((flags & (MSG_PEEK | MSG_TRUNC | MSG_ERRQUEUE)) != 0)
        return next<recv>("recv", descriptor, bytes, size, flags);
    return transfer<recv, receiveReturned>("recv", descriptor, bytes, size, flags);
}

ssize_t read(int descriptor, void *bytes, size_t size)
{
    return transfer<read, receiveReturned>("read", descriptor, bytes, size);
}

int poll(pollfd *watched, nfds_t count, int timeout)
{
    const std::int64_t since = ticks();
    const int result = next<poll>("poll", watched, count, timeout);
    for (nfds_t i = 0; i < count; ++i) {
        if (isTraced(watched[i].fd))
            waitReturned(watched[i].fd, result == 0, since);
    }
    return result;
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility pop
