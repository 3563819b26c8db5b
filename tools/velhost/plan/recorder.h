#pragma once

#include <vel/records.h>

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QTcpServer>
#include <QThread>

/// A controller that records the commands: a TCP server on a free port of 127.0.0.1. It has its own
/// thread, because the plug-in blocks the main thread. It answers a read with given words, the last
/// one repeated as often as the read asks, and every other command with OK.
class Recorder
{
public:
    Recorder();
    ~Recorder();
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// The port; 0 when it cannot listen.
    quint16 port() const { return m_server.serverPort(); }

    /// The command lines since the last call, each with its carriage return. A line is recorded
    /// before it is answered.
    QList<QByteArray> takeLines();

    /// The words for the next reads, separated by blanks; until then 00000.
    void setWords(const QByteArray &words);

private:
    void answer(QTcpSocket *socket);

    QTcpServer m_server;
    QThread m_thread;
    QMutex m_mutex;
    QList<QByteArray> m_lines;
    QByteArray m_words = "00000";
};

/// The device with the address 127.0.0.1 and that port, a recorder's. Its time-out, if it has one,
/// becomes 10 seconds.
DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port);

/// The same, but keeps an address that is not four numbers from 0 to 255, and the parameters with a
/// port that holds no digit. So the plug-in can refuse these without any connection to the plant.
DeviceInstancePlugin redirectedWhereValid(const DeviceInstancePlugin &device, quint16 port);

/// How many words or bits a command line reads or writes; 0 when it does neither.
int wordCount(const QByteArray &line);
