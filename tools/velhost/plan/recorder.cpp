#include "plan/recorder.h"

#include <common/ipv4address.h>

#include <QRegularExpression>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

namespace {

// The connection of a plug-in that sends a longer line is closed.
constexpr qint64 maximumCommand = 65'536;
constexpr int maximumWords = 65536;
// More than any controller gives in one answer, and few enough to arrive in one piece: what arrives
// later, a plug-in may take for the answer to its next command.
constexpr int maximumAnswer = 2000;
const QString portKey = QStringLiteral("port");

QByteArray answerTo(const QByteArray &line, const QByteArray &words)
{
    if (!line.startsWith("RD"))
        return "OK\r\n";
    const QList<QByteArray> given = words.split(' ');
    QByteArray answer = given.first();
    for (int i = 1; i < std::min(wordCount(line), maximumAnswer); ++i)
        answer += ' ' + given.value(i, given.last());
    return answer + "\r\n";
}

} // namespace

Recorder::Recorder()
{
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
        while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [this, socket] { answer(socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    m_server.listen(QHostAddress(QHostAddress::LocalHost));
    m_server.moveToThread(&m_thread);
    m_thread.start();
}

Recorder::~Recorder()
{
    m_thread.quit();
    m_thread.wait();
}

QList<QByteArray> Recorder::takeLines()
{
    const QMutexLocker locker(&m_mutex);
    return std::exchange(m_lines, {});
}

void Recorder::setWords(const QByteArray &words)
{
    const QMutexLocker locker(&m_mutex);
    m_words = words;
}

void Recorder::answer(QTcpSocket *socket)
{
    for (;;) {
        const QByteArray waiting = socket->peek(maximumCommand);
        const int end = waiting.indexOf('\r');
        if (end < 0) {
            if (waiting.size() == maximumCommand)
                socket->abort();
            return;
        }
        const QByteArray line = socket->read(end + 1);
        QByteArray words;
        {
            const QMutexLocker locker(&m_mutex);
            m_lines.append(line);
            words = m_words;
        }
        socket->write(answerTo(line, words));
    }
}

DeviceInstancePlugin redirected(DeviceInstancePlugin device, quint16 port)
{
    device.ipAddress = QStringLiteral("127.0.0.1");
    device.parameters.insert(portKey, QString::number(port));
    // With a time-out of a few milliseconds the recorder itself could be too slow.
    const QString timeout = QStringLiteral("timeout");
    if (device.parameters.contains(timeout))
        device.parameters.insert(timeout, QStringLiteral("10000"));
    return device;
}

DeviceInstancePlugin redirectedWhereValid(const DeviceInstancePlugin &device, quint16 port)
{
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    DeviceInstancePlugin result = redirected(device, port);
    if (!isDottedQuad(device.ipAddress))
        result.ipAddress = device.ipAddress;
    if (!device.parameters.value(portKey).contains(digit))
        result.parameters = device.parameters;
    return result;
}

int wordCount(const QByteArray &line)
{
    const QList<QByteArray> fields = line.simplified().split(' ');
    const QByteArray &command = fields.first();
    if (command == "RD" || command == "WR")
        return 1;
    if (command != "RDS" && command != "WRS")
        return 0;
    return qBound(0, fields.value(2).toInt(), maximumWords);
}
