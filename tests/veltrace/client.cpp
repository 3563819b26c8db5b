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
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Sends the first bytes of the buffer.
ssize_t sendBy(const std::string &call, size_t size)
{
    if (call == "write")
        return ::write(connection, buffer.data(), size);
    return ::send(connection, buffer.data(), size, MSG_NOSIGNAL);
}

// Receives into the buffer, at most that many bytes.
ssize_t receiveBy(const std::string &call, size_t size)
{
    const std::map<std::string, int> flags{{"all", MSG_WAITALL}, {"peek", MSG_PEEK}, {"recv", 0}};
    if (call == "read")
        return ::read(connection, buffer.data(), size);
    return ::recv(connection, buffer.data(), size, flags.at(call));
}

int waitFor(short events, int milliseconds)
{
    pollfd watched{connection, events, 0};
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
        {"poll", [](const std::string &ms) { return waitFor(POLLIN, std::stoi(ms)); }},
        {"writable", [](const std::string &ms) { return waitFor(POLLOUT, std::stoi(ms)); }},
    };
    if (call == "send" || call == "write") {
        std::copy(argument.begin(), argument.end(), buffer.begin());
        show(action, sendBy(call, argument.size()));
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
