#pragma once

#include "controller/faultreply.h"
#include "controller/linebuffer.h"

#include <QNetworkDatagram>
#include <QObject>

#include <memory>

class QUdpSocket;

class CommandInterpreter;
struct Controller;

/// The commands of one datagram.
struct DatagramLines
{
    QList<Line> lines;
    /// The last one has no carriage return of its own.
    bool isLastUnterminated = false;
};

/// Cuts a datagram into command lines, as LineBuffer does with a stream, but the end of the
/// datagram ends a line too. More than DatagramServer::maximumCommands are no commands: they are
/// one line that is too long.
DatagramLines linesOf(const QByteArray &datagram);

/// Adds the `actions` of one command to the datagrams of the answer. Each action of the kind Send
/// is a datagram; when the first one has no delay, it goes into the last datagram that is there.
void appendDatagrams(const QList<Action> &actions, QList<Action> *datagrams);

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

    /// `controller` and `interpreter` must outlive the server.
    DatagramServer(Controller *controller, CommandInterpreter *interpreter, QObject *parent);

    /// Starts to answer. False when that is not possible: `errorString()` then tells why.
    bool listen(const QHostAddress &address, quint16 port);

    /// Stops answering. Answers that wait to be sent are dropped.
    void close();

    QString errorString() const { return m_errorString; }

Q_SIGNALS:
    /// As Connection::answered(). The client's name ends in "/udp"; the last command of a datagram
    /// may lack its carriage return.
    void answered(const QByteArray &client, const QByteArray &command, const QByteArray &answer,
                  const QByteArray &fault);

    /// A fault wants the controller to be away for so long.
    void restartWanted(int milliseconds);

private:
    /// The datagrams that are still to be sent for one that was received.
    struct PendingAnswer
    {
        QNetworkDatagram question;
        QList<Action> datagrams;
    };

    void receive();
    Reply reply(const Line &line, const QByteArray &client, bool isUnterminated);
    void schedule(const QNetworkDatagram &question, const QList<Action> &datagrams);
    void sendDue(const std::shared_ptr<PendingAnswer> &pending);

    Controller *m_controller;
    CommandInterpreter *m_interpreter;
    /// Null while the server does not listen. It owns the timers of the answers that wait.
    QUdpSocket *m_socket = nullptr;
    QString m_errorString;
    /// The proper answer to the last command of any sender.
    QByteArray m_previousAnswer;
    /// Memory taken by answers that wait to be sent.
    int m_pendingBytes = 0;
};
