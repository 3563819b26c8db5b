#include "pluginlink.h"

#include "simulatorthread.h"

#include <cerrno>

#include <dlfcn.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

thread_local PluginLink *current = nullptr;

// The system's own function behind the one that this program defines.
template<typename Function>
Function *systemFunction(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

ssize_t systemSend(int descriptor, const void *data, size_t length, int flags)
{
    static auto *const function = systemFunction<ssize_t(int, const void *, size_t, int)>("send");
    return function(descriptor, data, length, flags);
}

int systemPoll(pollfd *watched, nfds_t count, int timeout)
{
    static auto *const function = systemFunction<int(pollfd *, nfds_t, int)>("poll");
    return function(watched, count, timeout);
}

ssize_t systemRead(int descriptor, void *data, size_t length)
{
    static auto *const function = systemFunction<ssize_t(int, void *, size_t)>("read");
    return function(descriptor, data, length);
}

bool hasInput(int descriptor)
{
    int bytes = 0;
    return ::ioctl(descriptor, FIONREAD, &bytes) == 0 && bytes > 0;
}

} // namespace

PluginLink::PluginLink(SimulatorThread *simulator) : m_simulator(simulator)
{
    current = this;
}

PluginLink::~PluginLink()
{
    current = nullptr;
}

ssize_t PluginLink::send(int descriptor, const void *data, size_t length, int flags)
{
    ++m_sends;
    m_simulator->settle();
    if (m_restIsMissing) {
        pollfd rest{descriptor, POLLIN, 0};
        systemPoll(&rest, 1, 10000);
        m_restIsMissing = false;
    }
    if (!hasInput(descriptor))
        return systemSend(descriptor, data, length, flags);
    m_held = QByteArray(static_cast<const char *>(data), static_cast<int>(length));
    return static_cast<ssize_t>(length);
}

void PluginLink::beforeWaitForInput()
{
    m_simulator->settle();
}

ssize_t PluginLink::read(int descriptor, void *data, size_t length)
{
    const ssize_t count = systemRead(descriptor, data, length);
    const int errorNumber = errno;
    m_restIsMissing
        = m_expectsRests && count > 0 && static_cast<const char *>(data)[count - 1] != '\n';
    if (!m_held.isEmpty())
        systemSend(descriptor, m_held.constData(), static_cast<size_t>(m_held.size()),
                   MSG_NOSIGNAL);
    m_held.clear();
    errno = errorNumber;
    return count;
}

// The plug-in's calls arrive here, because a program's own functions come before those of the
// libraries that it loads.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

Q_DECL_EXPORT ssize_t send(int descriptor, const void *data, size_t length, int flags)
{
    return current != nullptr ? current->send(descriptor, data, length, flags)
                              : systemSend(descriptor, data, length, flags);
}

// The system's header says of poll() that it only writes what is watched, so it is defined under
// another name here.
Q_DECL_EXPORT int linkedPoll(pollfd *watched, nfds_t count, int timeout) __asm__("poll");
int linkedPoll(pollfd *watched, nfds_t count, int timeout)
{
    if (current != nullptr && (watched->events & POLLIN) != 0)
        current->beforeWaitForInput();
    return systemPoll(watched, count, timeout);
}

Q_DECL_EXPORT ssize_t read(int descriptor, void *data, size_t length)
{
    return current != nullptr ? current->read(descriptor, data, length)
                              : systemRead(descriptor, data, length);
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
