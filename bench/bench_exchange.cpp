#include "hostrecords.h"
#include "loopback.h"
#include "recordingbackend.h"

#include <vel/velinterface.h>

#include <QPluginLoader>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <modbus/modbus.h>
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

// The answer to a request for the register of a Modbus server.
QByteArray register12345(const char *request)
{
    const QByteArray transaction(request, 4);
    const QByteArray unit(request + 6, 1);
    return transaction + QByteArray("\0\5", 2) + unit + QByteArray("\3\2\x30\x39", 4);
}

// Answers every request, on every connection, with the same word.
[[noreturn]] void answer(int listener)
{
    constexpr ssize_t modbusRequestSize = 12;
    std::vector<pollfd> watched = {{listener, POLLIN, 0}};
    std::array<char, 4096> buffer{};
    for (;;) {
        ::poll(watched.data(), watched.size(), -1);
        for (std::size_t i = 1; i < watched.size(); ++i) {
            if (watched[i].revents == 0)
                continue;
            const ssize_t size = ::read(watched[i].fd, buffer.data(), buffer.size());
            const QByteArray reply = size == modbusRequestSize ? register12345(buffer.data())
                                                               : QByteArray("12345\r\n");
            if (size > 0)
                ::send(watched[i].fd, reply.data(), static_cast<std::size_t>(reply.size()),
                       MSG_NOSIGNAL);
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

modbus_t *modbusConnected(int port)
{
    modbus_t *modbus = modbus_new_tcp("127.0.0.1", port);
    if (modbus == nullptr || modbus_connect(modbus) != 0)
        std::abort();
    return modbus;
}

void exchangeModbus(modbus_t *modbus, int count)
{
    for (; count > 0; --count) {
        std::uint16_t word = 0;
        if (modbus_read_registers(modbus, 201, 1, &word) != 1 || word != 12345)
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

// How many times longer one takes than the other, in the median round, with the spread.
void printRatio(const std::vector<double> &longer, const std::vector<double> &shorter)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < longer.size(); ++round)
        ratios.push_back(longer[round] / shorter[round]);
    const auto [least, greatest] = std::minmax_element(ratios.cbegin(), ratios.cend());
    std::printf("   %4.2f (%4.2f to %4.2f)", median(ratios), *least, *greatest);
}

// The times of all, round by round; each round begins with another one.
template<std::size_t count>
std::array<std::vector<double>, count>
inTurns(const std::array<std::function<void()>, count> &lists, int items)
{
    std::array<std::vector<double>, count> times;
    for (const auto &list : lists)
        list();
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t turn = 0; turn < count; ++turn) {
            const std::size_t next = (round + turn) % count;
            times[next].push_back(timed(lists[next], items));
        }
    }
    return times;
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
    const int bare = connected(server.port());
    modbus_t *modbus = modbusConnected(server.port());

    std::printf("An item in microseconds, and ratios: median of %d rounds (spread).\n", rounds);
    std::printf(" items   bare  plug-in  libmodbus   bare / plug-in        libmodbus / plug-in\n");
    for (const int items : {1, 10, 100, 1000, 10000}) {
        LogList list = logList(device, {});
        for (int i = 0; i < items; ++i)
            list.dataItems.append(dataItem(QStringLiteral("item"), QStringLiteral("D201"),
                                           QStringLiteral("1"), QStringLiteral("1")));
        const auto times
            = inTurns<3>({[=] { exchangeBare(bare, items); }, [&] { plugin->readData(&list); },
                          [=] { exchangeModbus(modbus, items); }},
                         items);
        if (valueOf(list.dataItems.constLast()) != QLatin1String("12345"))
            std::abort();
        std::printf("%6d %6.2f   %6.2f     %6.2f", items, median(times[0]), median(times[1]),
                    median(times[2]));
        printRatio(times[0], times[1]);
        printRatio(times[2], times[1]);
        std::printf("\n");
    }
    modbus_close(modbus);
    modbus_free(modbus);
    return EXIT_SUCCESS;
}
