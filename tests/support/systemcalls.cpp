#include "systemcalls.h"

#include <QMap>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <utility>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct PlannedFailure
{
    int errorNumber;
    int skip;
};

struct State
{
    QMap<SystemCalls::Call, PlannedFailure> planned;
    QList<int> ports;
    QList<int> waits;
    QList<int> closed;
    int failures = 0;
    int sendLimit = -1;
};

State state;
thread_local bool watching = false;

// Returns true and sets errno when this call must fail.
bool failsNow(SystemCalls::Call call)
{
    if (!watching)
        return false;
    const auto planned = state.planned.find(call);
    if (planned == state.planned.end() || planned->skip-- > 0)
        return false;
    errno = planned->errorNumber;
    state.planned.erase(planned);
    ++state.failures;
    return true;
}

} // namespace

void SystemCalls::fail(Call call, int errorNumber, int skip)
{
    state.planned.insert(call, {errorNumber, skip});
}

void SystemCalls::limitNextSend(int bytes)
{
    state.sendLimit = bytes;
}

int SystemCalls::failures()
{
    return state.failures;
}

QList<int> SystemCalls::ports()
{
    return state.ports;
}

QList<int> SystemCalls::waits()
{
    return state.waits;
}

QList<int> SystemCalls::closed()
{
    return state.closed;
}

void SystemCalls::watch()
{
    state = {};
    watching = true;
}

void SystemCalls::stop()
{
    watching = false;
}

// The linker's names for the redirected call and the real one.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

using SystemCalls::Call;

int __real_socket(int domain, int type, int protocol);
hostent *__real_gethostbyname(const char *name);
int __real_connect(int descriptor, const sockaddr *address, socklen_t length);
int __real_fcntl(int descriptor, int command, ...);
int __real_poll(pollfd *watched, nfds_t count, int timeout);
int __real_getsockopt(int descriptor, int level, int option, void *value, socklen_t *length);
ssize_t __real_send(int descriptor, const void *data, size_t length, int flags);
ssize_t __real_read(int descriptor, void *data, size_t length);
int __real_close(int descriptor);

int __wrap_socket(int domain, int type, int protocol)
{
    return failsNow(Call::Socket) ? -1 : __real_socket(domain, type, protocol);
}

hostent *__wrap_gethostbyname(const char *name)
{
    if (!failsNow(Call::Resolve))
        return __real_gethostbyname(name);
    static char address[] = {127, 0, 0, 1};
    static char *one[] = {address, nullptr};
    static char *none[] = {nullptr};
    static hostent host;
    host = {nullptr, nullptr, AF_INET, 4, one};
    if (errno == EAFNOSUPPORT)
        host.h_addrtype = AF_INET6;
    if (errno == ENODATA)
        host.h_addr_list = none;
    if (errno == EMSGSIZE)
        host.h_length = 3;
    return &host;
}

int __wrap_connect(int descriptor, const sockaddr *address, socklen_t length)
{
    if (watching)
        state.ports.append(ntohs(reinterpret_cast<const sockaddr_in *>(address)->sin_port));
    const bool planned = failsNow(Call::Connect);
    const int errorNumber = errno;
    if (planned && errorNumber != 0 && errorNumber != EAGAIN)
        return -1;
    const int result = __real_connect(descriptor, address, length);
    if (!planned)
        return result;
    if (errorNumber == EAGAIN) {
        errno = EAGAIN;
        return -1;
    }
    pollfd connecting{descriptor, POLLOUT, 0};
    return __real_poll(&connecting, 1, -1) == 1 ? 0 : -1;
}

int __wrap_fcntl(int descriptor, int command, ...)
{
    if (command == F_GETFL || command == F_GETFD)
        return failsNow(Call::GetFlags) ? -1 : __real_fcntl(descriptor, command);
    va_list arguments;
    va_start(arguments, command);
    // The argument is an integer or a pointer; both fit into a long.
    // The analyser does not know that va_start() fills the list in.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const long argument = va_arg(arguments, long);
    va_end(arguments);
    if (command == F_SETFL && failsNow(Call::SetFlags))
        return -1;
    return __real_fcntl(descriptor, command, argument);
}

int __wrap_poll(pollfd *watched, nfds_t count, int timeout)
{
    if (watching)
        state.waits.append(timeout);
    if (failsNow(Call::Poll)) {
        if (errno != EBADF)
            return -1;
        __real_close(watched->fd);
    }
    return __real_poll(watched, count, timeout);
}

int __wrap_getsockopt(int descriptor, int level, int option, void *value, socklen_t *length)
{
    return failsNow(Call::GetOption) ? -1
                                     : __real_getsockopt(descriptor, level, option, value, length);
}

ssize_t __wrap_send(int descriptor, const void *data, size_t length, int flags)
{
    if (failsNow(Call::Send))
        return -1;
    const int limit = watching ? std::exchange(state.sendLimit, -1) : -1;
    if (limit < 0)
        return __real_send(descriptor, data, length, flags);
    ++state.failures;
    return __real_send(descriptor, data, static_cast<size_t>(limit), flags);
}

ssize_t __wrap_read(int descriptor, void *data, size_t length)
{
    return failsNow(Call::Receive) ? -1 : __real_read(descriptor, data, length);
}

int __wrap_close(int descriptor)
{
    if (watching)
        state.closed.append(descriptor);
    return __real_close(descriptor);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
