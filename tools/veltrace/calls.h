#pragma once

#include "connections.h"

#include <array>
#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <sys/select.h>

// The version of dlsym() that every C library has; before 2.34 it was in libdl.
#if defined __x86_64__
__asm__(".symver dlsym, dlsym@GLIBC_2.2.5");
#elif defined __arm__
__asm__(".symver dlsym, dlsym@GLIBC_2.4");
#endif

// How each kind of call is made and told of. `own` is the function here that goes before the next
// one of that name, which gets the same arguments.

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

template<auto *own, auto returned, typename... Arguments>
ssize_t transfer(const char *name, const iovec *parts, int descriptor, Arguments... arguments)
{
    if (!isTraced(descriptor))
        return next<own>(name, descriptor, arguments...);
    const std::int64_t since = ticks();
    const ssize_t result = next<own>(name, descriptor, arguments...);
    returned(descriptor, {parts, result, errno, since});
    return result;
}

template<auto *own, typename... Arguments>
ssize_t sendPart(const char *name, int descriptor, const void *data, size_t size, Arguments... more)
{
    const iovec part{const_cast<void *>(data), size};
    return transfer<own, sendReturned>(name, &part, descriptor, data, size, more...);
}

// What is only looked at, or thrown away, has not been received.
inline bool receivesWith(int flags)
{
    return (flags & (MSG_PEEK | MSG_TRUNC | MSG_ERRQUEUE)) == 0;
}

template<auto *own, typename... Arguments>
ssize_t receive(const char *name, int flags, int descriptor, void *data, size_t size,
                Arguments... more)
{
    // Nothing received means that the peer has closed, but not where nothing was asked for.
    if (size == 0 || !receivesWith(flags))
        return next<own>(name, descriptor, data, size, more...);
    const iovec part{data, size};
    return transfer<own, receiveReturned>(name, &part, descriptor, data, size, more...);
}

template<auto *own>
ssize_t receiveMessage(const char *name, int descriptor, msghdr *message, int flags)
{
    if (!receivesWith(flags))
        return next<own>(name, descriptor, message, flags);
    return transfer<own, receiveReturned>(name, message->msg_iov, descriptor, message, flags);
}

template<auto *own, typename... Arguments>
int pollAll(const char *name, pollfd *watched, nfds_t count, Arguments... more)
{
    const std::int64_t since = ticks();
    const int result = next<own>(name, watched, count, more...);
    for (nfds_t i = 0; i < count; ++i) {
        if (isTraced(watched[i].fd))
            waitReturned(watched[i].fd, result == 0, since);
    }
    return result;
}

template<auto *own, typename... Arguments>
int selectAll(const char *name, int count, fd_set *readable, fd_set *writable, Arguments... more)
{
    // The call changes the sets. The wait of more connections than these is not seen.
    std::array<int, 64> watched;
    std::size_t watchedCount = 0;
    for (int i = 0; i < count && i < FD_SETSIZE && watchedCount < watched.size(); ++i) {
        if (isTraced(i)
            && ((readable != nullptr && FD_ISSET(i, readable))
                || (writable != nullptr && FD_ISSET(i, writable))))
            watched[watchedCount++] = i;
    }
    const std::int64_t since = ticks();
    const int result = next<own>(name, count, readable, writable, more...);
    for (std::size_t i = 0; i < watchedCount; ++i)
        waitReturned(watched[i], result == 0, since);
    return result;
}

template<auto *own>
int askOption(const char *name, int descriptor, int level, int option, void *value,
              socklen_t *length)
{
    const int result = next<own>(name, descriptor, level, option, value, length);
    if (result == 0 && level == SOL_SOCKET && option == SO_ERROR && isTraced(descriptor))
        errorAsked(descriptor, *static_cast<const int *>(value));
    return result;
}
