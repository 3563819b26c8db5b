#include "simulatorthread.h"

#include <network/server.h>

#include <QMutexLocker>

#include <utility>

void SimulatorErrands::waitForResume()
{
    paused.release();
    resumed.acquire();
}

SimulatorThread::SimulatorThread(const QHostAddress &address, quint16 port, QObject *parent)
    : QThread(parent), m_address(address), m_port(port)
{
    m_controller->traced = [this](const QByteArray &, ClientEvent event, const QByteArray &bytes) {
        if (event == ClientEvent::Received)
            recordCommand(bytes);
    };
    m_errands.moveToThread(this);
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
    return place ? m_controller->memory.value(*place) : -1;
}

bool SimulatorThread::setWord(const QByteArray &address, int value)
{
    return storeText({m_controller}, address, QByteArray::number(value)).isEmpty();
}

QString SimulatorThread::addFault(const QByteArray &fault)
{
    return m_controller->faults.add(fault);
}

void SimulatorThread::clearFaults()
{
    m_controller->faults.clear();
}

QVector<FaultCount> SimulatorThread::faultCounts() const
{
    return m_controller->faults.counts();
}

void SimulatorThread::recordCommand(const QByteArray &bytes)
{
    const QMutexLocker locker(&m_commandsMutex);
    m_commands.append(bytes.endsWith('\r') ? bytes.chopped(1) : bytes);
}

QByteArrayList SimulatorThread::takeCommands()
{
    const QMutexLocker locker(&m_commandsMutex);
    return std::exchange(m_commands, {});
}

// What was ready when the first round began is seen in the second one, and what that leaves to be
// done is done before the third one ends.
void SimulatorThread::settle()
{
    for (int round = 0; round < 3; ++round)
        QMetaObject::invokeMethod(&m_errands, "doNothing", Qt::BlockingQueuedConnection);
}

void SimulatorThread::pause()
{
    QMetaObject::invokeMethod(&m_errands, "waitForResume", Qt::QueuedConnection);
    m_errands.paused.acquire();
}

void SimulatorThread::resume()
{
    m_errands.resumed.release();
}

void SimulatorThread::run()
{
    Server server(m_controller.get());
    m_errorString = server.listen(m_address, m_port);
    m_port = server.serverPort();
    m_started.release();
    exec();
}
