#include "fullqueue.h"

#include "loopback.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

FullQueue::FullQueue()
{
    const int listener = listenOnLoopback(0, &m_port);
    m_descriptors.push_back(listener);
    const sockaddr_in address = loopbackAddress(m_port);
    // The queue is full when a new connection is no longer established.
    bool established = true;
    while (established) {
        const int filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        m_descriptors.push_back(filler);
        static_cast<void>(
            ::connect(filler, reinterpret_cast<const sockaddr *>(&address), sizeof address));
        pollfd connecting{filler, POLLOUT, 0};
        established = ::poll(&connecting, 1, 100) == 1;
    }
}

FullQueue::~FullQueue()
{
    for (const int descriptor : m_descriptors)
        ::close(descriptor);
}
