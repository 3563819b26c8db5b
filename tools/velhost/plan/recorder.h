#pragma once

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QSemaphore>
#include <QThread>

class QTcpSocket;

/// A controller that records the commands: a TCP server on a free port of 127.0.0.1. It has its own
/// thread, because the plug-in blocks the main thread. It answers a read with given words, the last
/// one repeated as often as the read asks, and every other command with OK.
class Recorder final : public QThread
{
    Q_OBJECT

public:
    Recorder();
    ~Recorder() override;
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// The port; 0 when it cannot listen.
    quint16 port() const { return m_port; }

    /// The command lines since the last call, each with its carriage return. A line is recorded
    /// before it is answered.
    QList<QByteArray> takeLines();

    /// The words for the next reads, separated by blanks; until then 00000.
    void setWords(const QByteArray &words);

protected:
    void run() override;

private:
    void answer(QTcpSocket *socket);

    QSemaphore m_started;
    quint16 m_port = 0;
    QMutex m_mutex;
    QList<QByteArray> m_lines;
    QByteArray m_words = "00000";
};

/// How many words or bits a command line reads or writes; 0 when it does neither.
int wordCount(const QByteArray &line);
