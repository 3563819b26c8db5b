#include "hostrecords.h"
#include "loopback.h"
#include "recordingbackend.h"

#include <vel/velinterface.h>

#include <QPluginLoader>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

// How fast the plug-in reads words, against a bare loop of send, poll and read that exchanges the
// same bytes with the same server. Both programs stand on one processor and take turns, so that
// only what is added to an exchange makes the difference.

namespace {

constexpr int rounds = 16;
constexpr int exchangesARound = 2000;
constexpr std::array<char, 8> command = {'R', 'D', ' ', 'D', '2', '0', '1', '\r'};

void stayOnOneProcessor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &one);
    if (::sched_setaffinity(0, sizeof one, &one) != 0)
        std::fprintf(stderr, "not pinned to one processor: expect a wider spread\n");
}

// Answers whatever is received, on every connection, with the same word.
[[noreturn]] void answer(int listener)
{
    std::vector<pollfd> watched = {{listener, POLLIN, 0}};
    std::array<char, 4096> buffer{};
    for (;;) {
        ::poll(watched.data(), watched.size(), -1);
        for (std::size_t i = 1; i < watched.size(); ++i) {
            if (watched[i].revents != 0 && ::read(watched[i].fd, buffer.data(), buffer.size()) > 0)
                ::send(watched[i].fd, "12345\r\n", 7, MSG_NOSIGNAL);
        }
        if (watched[0].revents != 0)
            watched.push_back({::accept(listener, nullptr, nullptr), POLLIN, 0});
    }
}

// Ends the server with the program.
class Server
{
public:
    Server()
    {
        const int listener = listenOnLoopback(16, &m_port);
        m_process = ::fork();
        if (m_process == 0)
            answer(listener);
        ::close(listener);
    }
    ~Server()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    int port() const { return m_port; }

private:
    int m_port = 0;
    pid_t m_process = -1;
};

int connected(int port)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopbackAddress(port);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        std::abort();
    return descriptor;
}

void exchangeBare(int descriptor, int count)
{
    std::array<char, 4096> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    for (; count > 0; --count) {
        pollfd watched{descriptor, POLLIN, 0};
        if (::send(descriptor, command.data(), command.size(), MSG_NOSIGNAL) <= 0
            || ::poll(&watched, 1, 2000) != 1
            || ::read(descriptor, buffer.data(), buffer.size()) <= 0)
            std::abort();
    }
}

// Microseconds an exchange.
double timed(const std::function<void()> &list, int items)
{
    using Clock = std::chrono::steady_clock;
    const int lists = std::max(1, exchangesARound / items);
    const Clock::time_point begin = Clock::now();
    for (int i = 0; i < lists; ++i)
        list();
    const std::chrono::duration<double, std::micro> time = Clock::now() - begin;
    return time.count() / lists / items;
}

double median(std::vector<double> figures)
{
    std::sort(figures.begin(), figures.end());
    return (figures[figures.size() / 2] + figures[(figures.size() - 1) / 2]) / 2;
}

void compare(int items, int descriptor, VELInterface &plugin, const DeviceInstancePlugin &device)
{
    LogList list = logList(device, {});
    for (int i = 0; i < items; ++i)
        list.dataItems.append(dataItem(QStringLiteral("item"), QStringLiteral("D201"),
                                       QStringLiteral("1"), QStringLiteral("1")));
    const auto bareList = [=] { exchangeBare(descriptor, items); };
    const auto pluginList = [&] { plugin.readData(&list); };
    std::vector<double> bare;
    std::vector<double> own;
    std::vector<double> ratios;
    for (int round = -1; round < rounds; ++round) {
        const bool bareFirst = round % 2 == 0;
        const double first = bareFirst ? timed(bareList, items) : timed(pluginList, items);
        const double second = bareFirst ? timed(pluginList, items) : timed(bareList, items);
        // The first round warms up.
        if (round < 0)
            continue;
        bare.push_back(bareFirst ? first : second);
        own.push_back(bareFirst ? second : first);
        ratios.push_back(bare.back() / own.back());
    }
    if (valueOf(list.dataItems.constLast()) != QLatin1String("12345"))
        std::abort();
    const auto [least, greatest] = std::minmax_element(ratios.cbegin(), ratios.cend());
    std::printf("%6d  %12.2f  %15.2f  %5.2f  %4.2f to %4.2f\n", items, median(bare), median(own),
                median(ratios), *least, *greatest);
}

} // namespace

int main()
{
    stayOnOneProcessor();
    const Server server;
    const DeviceInstancePlugin device = deviceRecord(1, QStringLiteral("bench"), server.port());
    RecordingBackend host;
    host.configuredDevices = {device};
    QPluginLoader loader(QStringLiteral(KEYENCE_PLUGIN_FILE));
    auto *plugin = qobject_cast<VELInterface *>(loader.instance());
    if (plugin == nullptr || !plugin->init()) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return EXIT_FAILURE;
    }
    const int descriptor = connected(server.port());
    std::printf(" items  bare loop us  the plug-in us  ratio  in %d rounds\n", rounds);
    for (const int items : {1, 10, 100, 1000, 10000})
        compare(items, descriptor, *plugin, device);
    return EXIT_SUCCESS;
}
