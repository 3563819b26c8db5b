#include "simulatorthread.h"

#include "server.h"

namespace kvsim {

SimulatorThread::SimulatorThread(const QHostAddress &address, quint16 port, QObject *parent)
    : QThread(parent), m_address(address), m_port(port)
{
    start();
    m_started.acquire();
}

SimulatorThread::~SimulatorThread()
{
    quit();
    wait();
}

int SimulatorThread::word(const QByteArray &address) const
{
    const std::optional<Address> place = parseAddress(address);
    return place ? m_memory.value(*place) : -1;
}

bool SimulatorThread::setWord(const QByteArray &address, int value)
{
    const std::optional<Address> place = parseAddress(address);
    if (!place || value < 0 || value > maximumValue(place->device->kind))
        return false;

    m_memory.setValue(*place, static_cast<quint16>(value));
    return true;
}

void SimulatorThread::run()
{
    Server server(&m_memory);
    if (!server.listen(m_address, m_port))
        m_errorString = server.errorString();
    m_port = server.port();
    m_started.release();
    exec();
}

} // namespace kvsim
