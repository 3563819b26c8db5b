#pragma once

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QSemaphore>
#include <QThread>

class QTcpSocket;

/// A controller that remembers what it was asked: a TCP server on a free port of 127.0.0.1 in a
/// thread of its own, because the plug-in blocks the program's. It answers a read with as many
/// words of zero as were asked for, and everything else with OK.
class Recorder final : public QThread
{
    Q_OBJECT

public:
    Recorder();
    ~Recorder() override;
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// The port in use; 0 when it cannot listen.
    quint16 port() const { return m_port; }

    /// The command lines since the last call, each with its carriage return. A line is among them
    /// before its answer is sent.
    QList<QByteArray> takeLines();

protected:
    void run() override;

private:
    void answer(QTcpSocket *socket);

    QSemaphore m_started;
    quint16 m_port = 0;
    QMutex m_mutex;
    QList<QByteArray> m_lines;
};

/// How many words or bits a command line reads or writes; 0 when it does neither.
int wordCount(const QByteArray &line);
