#pragma once

#include "controller/reply.h"

#include <QNetworkDatagram>
#include <QObject>

class QUdpSocket;

struct Controller;

/// Serves one controller over UDP: the commands of a datagram are answered to its sender.
class DatagramServer : public QObject
{
    Q_OBJECT

public:
    /// The most commands in a datagram. Their proper answers fit into one datagram, whatever they
    /// read.
    static constexpr int maximumCommands = 10;
    /// The most bytes in a datagram. A longer answer is cut off.
    static constexpr int largestDatagram = 65507;
    /// While more bytes than this wait to be sent, datagrams are dropped.
    static constexpr int pendingLimit = 256 * 1024;

    /// `controller` must outlive the server.
    explicit DatagramServer(Controller *controller);

    /// Starts to answer. Returns an empty text, or why that is not possible.
    QString listen(const QHostAddress &address, quint16 port);

    /// Stops answering. Answers that wait to be sent are dropped.
    void close();

Q_SIGNALS:
    /// A fault wants the controller to be away for so long.
    void restartWanted(int milliseconds);

private:
    void receive();
    void schedule(const QNetworkDatagram &question, const QList<Action> &datagrams);
    void send(const QNetworkDatagram &question, const QByteArray &answer);

    Controller *m_controller;
    /// Null while the server does not listen. It owns the timers of the answers that wait.
    QUdpSocket *m_socket = nullptr;
    /// The proper answer to the last command of any sender.
    QByteArray m_previousAnswer;
    /// Memory taken by answers that wait to be sent.
    int m_pendingBytes = 0;
};
