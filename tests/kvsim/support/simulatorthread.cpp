#include "simulatorthread.h"

#include <network/server.h>

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
    return valueAt(m_controller, address).value_or(-1);
}

bool SimulatorThread::setWord(const QByteArray &address, int value)
{
    return storeText(&m_controller, address, QByteArray::number(value)).isEmpty();
}

QString SimulatorThread::addFault(const QByteArray &fault)
{
    return m_controller.faults.add(fault);
}

void SimulatorThread::clearFaults()
{
    m_controller.faults.clear();
}

QVector<FaultCount> SimulatorThread::faultCounts() const
{
    return m_controller.faults.counts();
}

void SimulatorThread::run()
{
    Server server(&m_controller);
    if (!server.listen(m_address, m_port))
        m_errorString = server.errorString();
    m_port = server.port();
    m_started.release();
    exec();
}
