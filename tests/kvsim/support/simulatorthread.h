#pragma once

#include <controller/controller.h>

#include <QByteArrayList>
#include <QHostAddress>
#include <QMutex>
#include <QSemaphore>
#include <QString>
#include <QThread>

/// What the simulator's thread does on request: it lives there.
class SimulatorErrands final : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void doNothing() {}
    Q_INVOKABLE void waitForResume();

    QSemaphore paused;
    QSemaphore resumed;
};

/// A simulated controller that runs in a thread of its own, for tests whose own thread blocks. It
/// listens when the constructor returns; it is gone, with its connections, when the destructor
/// returns. The caller needs no event loop.
class SimulatorThread final : public QThread
{
    Q_OBJECT

public:
    /// Port 0 picks a free one. Check `isListening()` before use.
    explicit SimulatorThread(const QHostAddress &address = QHostAddress(QHostAddress::LocalHost),
                             quint16 port = 0, QObject *parent = nullptr);
    ~SimulatorThread() override;
    SimulatorThread(const SimulatorThread &) = delete;
    SimulatorThread &operator=(const SimulatorThread &) = delete;

    bool isListening() const { return m_port != 0; }
    /// Why it does not listen; empty when it does.
    QString errorString() const { return m_errorString; }
    /// The port in use, 0 when it does not listen.
    quint16 port() const { return m_port; }

    /// The word (0 to 65535) or bit (0 or 1) at `address`, for example "DM100" or "R015"; -1 when
    /// there is no such address. May be called from any thread at any time.
    int word(const QByteArray &address) const;

    /// Stores a word (0 to 65535) or a bit (0 or 1), in a read-only device too. False, and nothing
    /// is stored, when there is no such address or the value does not fit. May be called from any
    /// thread at any time; the next command sees it.
    bool setWord(const QByteArray &address, int value);

    /// Puts a fault in force, for example "silent@DM100", see parseFault(). Returns an empty text,
    /// or what is wrong. May be called from any thread at any time; the next command, or the next
    /// client, meets it.
    QString addFault(const QByteArray &fault);

    /// Ends all faults and forgets their counters. May be called from any thread at any time.
    void clearFaults();

    /// How often each fault in force was seen and applied, in the order in which they were added.
    /// May be called from any thread at any time.
    QVector<FaultCount> faultCounts() const;

    /// What all clients together have done. May be called from any thread at any time.
    const Counters &counters() const { return m_controller->counters; }

    /// The commands since the last call, without their line ends, in the order in which they
    /// came. May be called from any thread at any time.
    QByteArrayList takeCommands();

    /// Returns when all that has reached the simulator is dealt with, new clients too, and what
    /// that sends at once is sent. Call it from another thread than the simulator's.
    void settle();

    /// The simulator does nothing until resume(), as if its processor was busy elsewhere. Call both
    /// from another thread than the simulator's.
    void pause();
    void resume();

protected:
    void run() override;

private:
    void recordCommand(const QByteArray &bytes);

    QHostAddress m_address;
    const std::shared_ptr<Controller> m_controller{std::make_shared<Controller>()};
    QMutex m_commandsMutex;
    QByteArrayList m_commands;
    SimulatorErrands m_errands;
    /// Released when `m_port` and `m_errorString` are set.
    QSemaphore m_started;
    quint16 m_port;
    QString m_errorString;
};
