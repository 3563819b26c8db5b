// The calls of the C library that a program makes for a connection. These go before the library's
// own: they make the same call, and tell what came of it.

#include "calls.h"

#include <unistd.h>

#pragma GCC visibility push(default)
// NOLINTBEGIN(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
extern "C" {

int connect(int descriptor, const sockaddr *peer, socklen_t length)
{
    const std::int64_t since = ticks();
    const int result = next<connect>("connect", descriptor, peer, length);
    connectReturned(descriptor, peer, length, result == 0 ? 0 : errno, since);
    return result;
}

int shutdown(int descriptor, int how) noexcept
{
    const int result = next<shutdown>("shutdown", descriptor, how);
    if (result == 0 && isTraced(descriptor))
        endsDirection(descriptor);
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
    return askOption<getsockopt>("getsockopt", descriptor, level, option, value, length);
}

ssize_t send(int descriptor, const void *data, size_t size, int flags)
{
    return sendPart<send>("send", descriptor, data, size, flags);
}

ssize_t sendto(int descriptor, const void *data, size_t size, int flags, const sockaddr *peer,
               socklen_t length)
{
    return sendPart<sendto>("sendto", descriptor, data, size, flags, peer, length);
}

ssize_t sendmsg(int descriptor, const msghdr *message, int flags)
{
    return transfer<sendmsg, sendReturned>("sendmsg", message->msg_iov, descriptor, message, flags);
}

ssize_t write(int descriptor, const void *data, size_t size)
{
    return sendPart<write>("write", descriptor, data, size);
}

ssize_t writev(int descriptor, const iovec *parts, int count)
{
    return transfer<writev, sendReturned>("writev", parts, descriptor, parts, count);
}

ssize_t recv(int descriptor, void *data, size_t size, int flags)
{
    return receive<recv>("recv", flags, descriptor, data, size, flags);
}

ssize_t recvfrom(int descriptor, void *data, size_t size, int flags, sockaddr *peer,
                 socklen_t *length)
{
    return receive<recvfrom>("recvfrom", flags, descriptor, data, size, flags, peer, length);
}

ssize_t recvmsg(int descriptor, msghdr *message, int flags)
{
    return receiveMessage<recvmsg>("recvmsg", descriptor, message, flags);
}

ssize_t read(int descriptor, void *data, size_t size)
{
    return receive<read>("read", 0, descriptor, data, size);
}

ssize_t readv(int descriptor, const iovec *parts, int count)
{
    return transfer<readv, receiveReturned>("readv", parts, descriptor, parts, count);
}

int poll(pollfd *watched, nfds_t count, int timeout)
{
    return pollAll<poll>("poll", watched, count, timeout);
}

int ppoll(pollfd *watched, nfds_t count, const timespec *timeout, const sigset_t *signals)
{
    return pollAll<ppoll>("ppoll", watched, count, timeout, signals);
}

int select(int count, fd_set *readable, fd_set *writable, fd_set *exceptional, timeval *timeout)
{
    return selectAll<select>("select", count, readable, writable, exceptional, timeout);
}

int pselect(int count, fd_set *readable, fd_set *writable, fd_set *exceptional,
            const timespec *timeout, const sigset_t *signals)
{
    return selectAll<pselect>("pselect", count, readable, writable, exceptional, timeout, signals);
}

// Programs that were compiled with _FORTIFY_SOURCE hand over how large the memory is.

ssize_t __recv_chk(int descriptor, void *data, size_t size, size_t room, int flags)
{
    return receive<__recv_chk>("__recv_chk", flags, descriptor, data, size, room, flags);
}

ssize_t __recvfrom_chk(int descriptor, void *data, size_t size, size_t room, int flags,
                       sockaddr *peer, socklen_t *length)
{
    return receive<__recvfrom_chk>("__recvfrom_chk", flags, descriptor, data, size, room, flags,
                                   peer, length);
}

ssize_t __read_chk(int descriptor, void *data, size_t size, size_t room)
{
    return receive<__read_chk>("__read_chk", 0, descriptor, data, size, room);
}

int __poll_chk(pollfd *watched, nfds_t count, int timeout, size_t room)
{
    return pollAll<__poll_chk>("__poll_chk", watched, count, timeout, room);
}

int __ppoll_chk(pollfd *watched, nfds_t count, const timespec *timeout, const sigset_t *signals,
                size_t room)
{
    return pollAll<__ppoll_chk>("__ppoll_chk", watched, count, timeout, signals, room);
}

#if __WORDSIZE == 32

// Programs for 32 bits that were compiled with _TIME_BITS=64 have another form of time.

int __getsockopt64(int descriptor, int level, int option, void *value, socklen_t *length)
{
    return askOption<__getsockopt64>("__getsockopt64", descriptor, level, option, value, length);
}

ssize_t __sendmsg64(int descriptor, const msghdr *message, int flags)
{
    return transfer<__sendmsg64, sendReturned>("__sendmsg64", message->msg_iov, descriptor, message,
                                               flags);
}

ssize_t __recvmsg64(int descriptor, msghdr *message, int flags)
{
    return receiveMessage<__recvmsg64>("__recvmsg64", descriptor, message, flags);
}

int __ppoll64(pollfd *watched, nfds_t count, const void *timeout, const sigset_t *signals)
{
    return pollAll<__ppoll64>("__ppoll64", watched, count, timeout, signals);
}

int __ppoll64_chk(pollfd *watched, nfds_t count, const void *timeout, const sigset_t *signals,
                  size_t room)
{
    return pollAll<__ppoll64_chk>("__ppoll64_chk", watched, count, timeout, signals, room);
}

int __select64(int count, fd_set *readable, fd_set *writable, fd_set *exceptional, void *timeout)
{
    return selectAll<__select64>("__select64", count, readable, writable, exceptional, timeout);
}

int __pselect64(int count, fd_set *readable, fd_set *writable, fd_set *exceptional,
                const void *timeout, const sigset_t *signals)
{
    return selectAll<__pselect64>("__pselect64", count, readable, writable, exceptional, timeout,
                                  signals);
}

#endif

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility pop
