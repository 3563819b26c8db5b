// A host that is no other program of the project: without Qt and the plug-in. client PORT ACTION...
// does what the actions say, one after the other, mostly with one connection to 127.0.0.1:PORT, and
// prints of each what the host sees of it. What is loaded into it must change nothing of that.

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

// What programs call that were compiled with _FORTIFY_SOURCE.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" ssize_t __read_chk(int descriptor, void *data, size_t size, size_t room);
extern "C" ssize_t __recv_chk(int descriptor, void *data, size_t size, size_t room, int flags);
extern "C" ssize_t __recvfrom_chk(int descriptor, void *data, size_t size, size_t room, int flags,
                                  sockaddr *peer, socklen_t *length);
extern "C" int __poll_chk(pollfd *watched, nfds_t count, int timeout, size_t room);
extern "C" int __ppoll_chk(pollfd *watched, nfds_t count, const timespec *timeout,
                           const sigset_t *signals, size_t room);
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr int unusualErrorNumber = 4242;

int port = 0;
int connection = -1;
std::array<char, 200000> buffer;

// What one call has done to the host.
void show(const std::string &action, ssize_t result, const std::string &data = {})
{
    const int errorNumber = errno;
    std::printf("%s: %zd errno %d [%s]\n", action.c_str(), result, errorNumber, data.c_str());
    std::fflush(stdout);
    errno = unusualErrorNumber;
}

sockaddr_in address(int number)
{
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(static_cast<in_port_t>(number));
    peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return peer;
}

int connectTo(int descriptor, int number)
{
    const sockaddr_in peer = address(number);
    return ::connect(descriptor, reinterpret_cast<const sockaddr *>(&peer), sizeof peer);
}

void setBlocking(bool blocking)
{
    const int flags = ::fcntl(connection, F_GETFL);
    ::fcntl(connection, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK);
}

int pendingError()
{
    int error = 0;
    socklen_t length = sizeof error;
    return ::getsockopt(connection, SOL_SOCKET, SO_ERROR, &error, &length) == 0 ? error : -1;
}

// In two parts, as hosts do that keep head and body apart.
std::array<iovec, 2> partsOf(size_t size)
{
    return {iovec{buffer.data(), 3}, iovec{buffer.data() + 3, size - 3}};
}

msghdr messageOf(std::array<iovec, 2> *parts)
{
    msghdr message{};
    message.msg_iov = parts->data();
    message.msg_iovlen = parts->size();
    return message;
}

// Sends the first bytes of the buffer.
ssize_t sendBy(const std::string &call, size_t size)
{
    std::array<iovec, 2> parts = partsOf(size);
    const msghdr message = messageOf(&parts);
    if (call == "sendto")
        return ::sendto(connection, buffer.data(), size, MSG_NOSIGNAL, nullptr, 0);
    if (call == "sendmsg")
        return ::sendmsg(connection, &message, MSG_NOSIGNAL);
    if (call == "write")
        return ::write(connection, buffer.data(), size);
    if (call == "writev")
        return ::writev(connection, parts.data(), 2);
    return ::send(connection, buffer.data(), size, MSG_NOSIGNAL);
}

// Receives into the buffer, at most that many bytes.
ssize_t receiveBy(const std::string &call, size_t size)
{
    const size_t room = buffer.size();
    std::array<iovec, 2> parts = partsOf(size);
    msghdr message = messageOf(&parts);
    if (call == "read")
        return ::read(connection, buffer.data(), size);
    if (call == "readv")
        return ::readv(connection, parts.data(), 2);
    if (call == "recvfrom")
        return ::recvfrom(connection, buffer.data(), size, 0, nullptr, nullptr);
    if (call == "recvmsg")
        return ::recvmsg(connection, &message, 0);
    if (call == "all")
        return ::recv(connection, buffer.data(), size, MSG_WAITALL);
    if (call == "peek")
        return ::recv(connection, buffer.data(), size, MSG_PEEK);
    if (call == "read_chk")
        return __read_chk(connection, buffer.data(), size, room);
    if (call == "recv_chk")
        return __recv_chk(connection, buffer.data(), size, room, 0);
    if (call == "recvfrom_chk")
        return __recvfrom_chk(connection, buffer.data(), size, room, 0, nullptr, nullptr);
    return ::recv(connection, buffer.data(), size, 0);
}

// Waits until the connection is readable or writable.
int waitBy(const std::string &call, int milliseconds, bool writable)
{
    pollfd watched{connection, static_cast<short>(writable ? POLLOUT : POLLIN), 0};
    fd_set set;
    FD_ZERO(&set);
    FD_SET(connection, &set);
    fd_set *const readable = writable ? nullptr : &set;
    timespec limit{milliseconds / 1000, milliseconds % 1000 * 1000000L};
    timeval otherLimit{limit.tv_sec, limit.tv_nsec / 1000};
    if (call == "ppoll")
        return ::ppoll(&watched, 1, &limit, nullptr);
    if (call == "select")
        return ::select(connection + 1, readable, writable ? &set : nullptr, nullptr, &otherLimit);
    if (call == "pselect")
        return ::pselect(connection + 1, readable, writable ? &set : nullptr, nullptr, &limit,
                         nullptr);
    if (call == "poll_chk")
        return __poll_chk(&watched, 1, milliseconds, sizeof watched);
    if (call == "ppoll_chk")
        return __ppoll_chk(&watched, 1, &limit, nullptr, sizeof watched);
    return ::poll(&watched, 1, milliseconds);
}

// Closes the connection unnoticed, and works with the file under the same number.
int replaceBy(const std::string &fileName)
{
    ::syscall(SYS_close, connection);
    const int file = ::open(fileName.c_str(), O_RDWR);
    if (file != connection || ::write(file, "secret", 6) != 6 || ::lseek(file, 0, SEEK_SET) != 0
        || ::read(file, buffer.data(), 6) != 6)
        return -1;
    return ::close(file);
}

// Closes all descriptors, as daemons do when they start, and gives their numbers to the file.
int closeAll(const std::string &fileName)
{
    for (int descriptor = 3; descriptor < 1024; ++descriptor)
        ::close(descriptor);
    const int file = ::open(fileName.c_str(), O_RDWR);
    for (int descriptor = file + 1; descriptor < 1024; ++descriptor)
        ::dup2(file, descriptor);
    ::close(file);
    return file;
}

bool exchange(int descriptor, const std::string &command, const std::string &answer)
{
    std::array<char, 100> received{};
    size_t count = 0;
    if (::send(descriptor, command.data(), command.size(), MSG_NOSIGNAL) < 0)
        return false;
    while (count < answer.size()) {
        const ssize_t more
            = ::recv(descriptor, received.data() + count, received.size() - count, 0);
        if (more <= 0)
            return false;
        count += static_cast<size_t>(more);
    }
    return std::string(received.data(), count) == answer;
}

// So many exchanges over a connection of their own. Returns how many went well.
int exchanges(int count)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    int good = 0;
    if (connectTo(descriptor, port) == 0) {
        for (int i = 0; i < count; ++i)
            good += exchange(descriptor, "?K\r", "55\r\n") ? 1 : 0;
    }
    ::close(descriptor);
    return good;
}

// In a process of its own, which has inherited the connection and uses it first.
int exchangesInChild(int count)
{
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isUsable = connection < 0 || exchange(connection, "?K\r", "55\r\n");
        ::close(connection);
        ::_exit(isUsable && exchanges(count) == count ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

// Several threads with a connection each, while the process forks.
int exchangesInThreads(int count)
{
    std::array<int, 4> good{};
    std::vector<std::thread> threads;
    threads.reserve(good.size());
    for (int &result : good)
        threads.emplace_back([&result, count] { result = exchanges(count); });
    int failed = 0;
    for (int i = 0; i < 10; ++i)
        failed += exchangesInChild(1) == 0 ? 0 : 1;
    for (std::thread &thread : threads)
        thread.join();
    return std::count(good.begin(), good.end(), count) == 4 ? failed : -1;
}

volatile std::sig_atomic_t alarms = 0;

int other = -1;

// Exchanges while a signal handler, again and again, sends over another connection.
int exchangesWithAlarms(int count)
{
    other = ::socket(AF_INET, SOCK_STREAM, 0);
    if (connectTo(other, port) != 0)
        return -1;
    struct sigaction action = {};
    action.sa_flags = SA_RESTART;
    action.sa_handler = [](int) {
        const int errorNumber = errno;
        pollfd watched{other, POLLOUT, 0};
        if (::poll(&watched, 1, 0) == 1)
            ::send(other, "?K\r", 3, MSG_NOSIGNAL);
        alarms = alarms + 1;
        errno = errorNumber;
    };
    ::sigaction(SIGALRM, &action, nullptr);
    const itimerval often{{0, 200}, {0, 200}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    int good = 0;
    while (good < count || alarms < 100) {
        if (!exchange(connection, "?K\r", "55\r\n"))
            return -1;
        ++good;
    }
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    return 0;
}

int limitFiles(int bytes)
{
    const rlimit limit{static_cast<rlim_t>(bytes), RLIM_INFINITY};
    return ::setrlimit(RLIMIT_FSIZE, &limit);
}

int begin(bool waitsForIt)
{
    connection = ::socket(AF_INET, SOCK_STREAM, 0);
    errno = unusualErrorNumber;
    setBlocking(waitsForIt);
    return connectTo(connection, port);
}

// Sends every byte that there is.
int sendAllBytes()
{
    for (size_t i = 0; i < 256; ++i)
        buffer[i] = static_cast<char>(i);
    return static_cast<int>(sendBy("send", 256));
}

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// Whatever is no other action receives, by the call of that name.
void act(const std::string &action, const std::string &call, const std::string &argument)
{
    const std::map<std::string, int (*)(const std::string &)> others{
        {"connect", [](const std::string &) { return begin(true); }},
        {"begin", [](const std::string &) { return begin(false); }},
        {"again", [](const std::string &) { return connectTo(connection, port); }},
        {"port", [](const std::string &to) { return port = std::stoi(to); }},
        {"error", [](const std::string &) { return pendingError(); }},
        {"blocking",
         [](const std::string &) {
             setBlocking(true);
             return 0;
         }},
        {"bytes", [](const std::string &) { return sendAllBytes(); }},
        {"shutdown", [](const std::string &) { return ::shutdown(connection, SHUT_WR); }},
        {"close", [](const std::string &) { return ::close(connection); }},
        {"replace", [](const std::string &file) { return replaceBy(file); }},
        {"closeall", [](const std::string &file) { return closeAll(file); }},
        {"pause", [](const std::string &) { return std::getchar(); }},
        {"folder", [](const std::string &name) { return ::chdir(name.c_str()); }},
        {"limit", [](const std::string &bytes) { return limitFiles(std::stoi(bytes)); }},
        {"exchanges", [](const std::string &count) { return exchanges(std::stoi(count)); }},
        {"fork", [](const std::string &count) { return exchangesInChild(std::stoi(count)); }},
        {"threads", [](const std::string &count) { return exchangesInThreads(std::stoi(count)); }},
        {"alarms", [](const std::string &count) { return exchangesWithAlarms(std::stoi(count)); }},
        {"writable", [](const std::string &ms) { return waitBy("poll", std::stoi(ms), true); }},
    };
    if (startsWith(call, "send") || startsWith(call, "write")) {
        std::copy(argument.begin(), argument.end(), buffer.begin());
        show(action, sendBy(call, argument.size()));
    } else if (call.find("poll") != std::string::npos || call.find("select") != std::string::npos) {
        show(action, waitBy(call, std::stoi(argument), false));
    } else if (others.count(call) != 0) {
        show(action, others.at(call)(argument));
    } else {
        const ssize_t count
            = receiveBy(call, argument.empty() ? buffer.size() : std::stoul(argument));
        show(action, count,
             count > 0 ? std::string(buffer.data(), static_cast<size_t>(count)) : "");
    }
}

} // namespace

int main(int count, char **arguments)
{
    port = std::stoi(arguments[1]);
    errno = unusualErrorNumber;
    for (int i = 2; i < count; ++i) {
        const std::string action = arguments[i];
        const size_t end = std::min(action.find('='), action.size());
        act(action, action.substr(0, end), action.substr(std::min(end + 1, action.size())));
    }
    return 0;
}
