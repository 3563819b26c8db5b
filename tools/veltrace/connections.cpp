#include "connections.h"

#include <atomic>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int mostDescriptors = 4096;
// A shorter wait is a look whether something is there.
constexpr std::int64_t shortestTimeout = 1000;

using PeerText = std::array<char, sizeof "255.255.255.255:65535">;

struct Connection
{
    std::int64_t begun;
    std::int64_t waited;
    // Tells a socket from whatever else has got its descriptor.
    std::uint64_t node;
    // 0: none.
    std::atomic<unsigned int> number;
    bool isConnecting;
    bool awaitsAnswer;
    PeerText peer;
};

std::array<Connection, mostDescriptors> connections;
std::array<const char *, EHWPOISON + 1> errorTexts;
Ports tracedPorts;
Sink sinkOfAll = nullptr;
unsigned int lastNumber = 0;
// A process that shares this memory without having been made by fork() is not traced.
pid_t owner = 0;
pthread_mutex_t mutex;
// A signal handler may find its own thread in here; what it does is not traced then.
thread_local bool isInside = false;

// 0 for what is no socket.
std::uint64_t socketNode(int descriptor)
{
    struct statx status = {};
    const bool isSocket = statx(descriptor, "", AT_EMPTY_PATH, STATX_TYPE | STATX_INO, &status) == 0
                          && S_ISSOCK(status.stx_mode);
    return isSocket ? status.stx_ino : 0;
}

// Keeps the other threads out and the own one alive, and `errno` as it was.
class Inside
{
public:
    Inside() : m_errorNumber(errno), m_mayEnter(!isInside && owner == getpid())
    {
        if (!m_mayEnter)
            return;
        isInside = true;
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_cancelState);
        pthread_mutex_lock(&mutex);
    }
    ~Inside()
    {
        if (m_mayEnter) {
            pthread_mutex_unlock(&mutex);
            pthread_setcancelstate(m_cancelState, nullptr);
            isInside = false;
        }
        errno = m_errorNumber;
    }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;

    // The connection of that descriptor, or a null pointer.
    Connection *connection(int descriptor) const
    {
        if (!m_mayEnter || !isTraced(descriptor))
            return nullptr;
        Connection &found = connections[static_cast<std::size_t>(descriptor)];
        if (socketNode(descriptor) == found.node)
            return &found;
        found.number = 0;
        return nullptr;
    }
    bool mayEnter() const { return m_mayEnter; }

private:
    const int m_errorNumber;
    const bool m_mayEnter;
    int m_cancelState = PTHREAD_CANCEL_ENABLE;
};

// The thread that forks is the only one in the new process, so nobody else may be in here then.
void beforeFork()
{
    if (!isInside)
        pthread_mutex_lock(&mutex);
}

void afterFork()
{
    if (!isInside)
        pthread_mutex_unlock(&mutex);
}

// What was inherited belongs to the parent, which tells of it.
void afterForkInChild()
{
    for (Connection &inherited : connections) {
        if (inherited.number != 0)
            inherited.number = 0;
    }
    lastNumber = 0;
    owner = getpid();
    afterFork();
}

// False for a peer that is not traced.
bool readPeer(const sockaddr *address, socklen_t length, PeerText *text)
{
    sockaddr_in peer = {};
    if (address == nullptr || length < sizeof peer || address->sa_family != AF_INET)
        return false;
    std::memcpy(&peer, address, sizeof peer);
    const unsigned int port = ntohs(peer.sin_port);
    if ((tracedPorts[port / 8] >> port % 8 & 1) == 0)
        return false;
    inet_ntop(AF_INET, &peer.sin_addr, text->data(), sizeof *text);
    const std::size_t hostLength = std::strlen(text->data());
    std::snprintf(text->data() + hostLength, text->size() - hostLength, ":%u", port);
    return true;
}

const char *textOf(int error)
{
    const auto number = static_cast<std::size_t>(error);
    return number < errorTexts.size() ? errorTexts[number] : "Unknown error";
}

void report(const Connection &connection, Event event)
{
    event.connection = connection.number;
    event.peer = connection.peer.data();
    sinkOfAll(event);
}

void reportWait(Connection *connection, Event event)
{
    event.waited = connection->waited;
    connection->waited = 0;
    report(*connection, event);
}

void finishConnecting(Connection *connection, int error)
{
    connection->isConnecting = false;
    connection->waited = ticks() - connection->begun;
    reportWait(connection, {"connect", error == 0 ? "connected" : textOf(error)});
}

// The connection lasts after an error of these.
bool goesOn(int error)
{
    return error == EAGAIN || error == EINTR || error == EINPROGRESS || error == EALREADY;
}

void fail(Connection *connection, int error)
{
    if (goesOn(error))
        return;
    if (connection->isConnecting) {
        finishConnecting(connection, error);
        return;
    }
    connection->awaitsAnswer = false;
    reportWait(connection, {"reset", textOf(error)});
}

void runOut(Connection *connection)
{
    if (connection->waited >= shortestTimeout
        && (connection->isConnecting || connection->awaitsAnswer))
        reportWait(connection, {"timeout"});
}

bool isConnected(int descriptor)
{
    sockaddr_storage peer;
    socklen_t length = sizeof peer;
    return getpeername(descriptor, reinterpret_cast<sockaddr *>(&peer), &length) == 0;
}

} // namespace

void trace(const Ports &ports, Sink sink)
{
    tracedPorts = ports;
    // A signal handler could not ask for them.
    for (std::size_t number = 0; number < errorTexts.size(); ++number)
        errorTexts[number] = errorText(static_cast<int>(number));
    pthread_atfork(beforeFork, afterFork, afterForkInChild);
    owner = getpid();
    sinkOfAll = sink;
}

const char *errorText(int error)
{
    return strerror_l(error, newlocale(LC_ALL_MASK, "C", nullptr));
}

std::int64_t ticks()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

bool isTraced(int descriptor)
{
    return descriptor >= 0 && descriptor < mostDescriptors
           && connections[static_cast<std::size_t>(descriptor)].number.load(
                  std::memory_order_relaxed)
                  != 0;
}

void connectReturned(int descriptor, const sockaddr *peer, socklen_t length, int error,
                     std::int64_t since)
{
    const Inside inside;
    if (!inside.mayEnter() || descriptor < 0 || descriptor >= mostDescriptors)
        return;
    Connection *connection = inside.connection(descriptor);
    // A connection that is being made is asked for again, to see how it stands.
    if (connection == nullptr || !connection->isConnecting) {
        int type = 0;
        socklen_t typeLength = sizeof type;
        const std::uint64_t node = socketNode(descriptor);
        Connection &fresh = connections[static_cast<std::size_t>(descriptor)];
        if (error == EISCONN || getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &typeLength) != 0
            || type != SOCK_STREAM || node == 0 || !readPeer(peer, length, &fresh.peer))
            return;
        connection = &fresh;
        connection->number = ++lastNumber;
        connection->node = node;
        connection->isConnecting = true;
        connection->awaitsAnswer = false;
        connection->begun = since;
        connection->waited = 0;
    }
    if (!goesOn(error))
        finishConnecting(connection, error == EISCONN ? 0 : error);
}

void errorAsked(int descriptor, int error)
{
    const Inside inside;
    Connection *const connection = inside.connection(descriptor);
    if (connection == nullptr)
        return;
    if (error != 0)
        fail(connection, error);
    else if (connection->isConnecting && isConnected(descriptor))
        finishConnecting(connection, 0);
}

void sendReturned(int descriptor, const Transfer &transfer)
{
    const Inside inside;
    Connection *const connection = inside.connection(descriptor);
    if (connection == nullptr || transfer.result == 0)
        return;
    if (transfer.result < 0) {
        fail(connection, transfer.error);
        return;
    }
    if (connection->isConnecting)
        finishConnecting(connection, 0);
    connection->awaitsAnswer = true;
    connection->waited = 0;
    report(*connection,
           {"sent", nullptr, transfer.bytes, static_cast<std::size_t>(transfer.result)});
}

void receiveReturned(int descriptor, const Transfer &transfer)
{
    const Inside inside;
    Connection *const connection = inside.connection(descriptor);
    if (connection == nullptr)
        return;
    connection->waited += ticks() - transfer.since;
    if (transfer.result < 0) {
        if (transfer.error == EAGAIN)
            runOut(connection);
        else
            fail(connection, transfer.error);
        return;
    }
    if (connection->isConnecting)
        finishConnecting(connection, 0);
    connection->awaitsAnswer = false;
    reportWait(connection, {transfer.result > 0 ? "received" : "closed", nullptr, transfer.bytes,
                            static_cast<std::size_t>(transfer.result)});
}

void waitReturned(int descriptor, bool timedOut, std::int64_t since)
{
    const Inside inside;
    Connection *const connection = inside.connection(descriptor);
    if (connection == nullptr)
        return;
    connection->waited += ticks() - since;
    if (timedOut)
        runOut(connection);
    else if (connection->isConnecting && isConnected(descriptor))
        finishConnecting(connection, 0);
}

void closes(int descriptor)
{
    const Inside inside;
    Connection *const connection = inside.connection(descriptor);
    if (connection == nullptr)
        return;
    report(*connection, {"close"});
    connection->number = 0;
}
