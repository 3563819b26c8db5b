#include "plan/recorder.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

namespace {

// The connection of a plug-in that sends a longer line is closed.
constexpr qint64 maximumLine = 65'536;
constexpr int maximumWords = 65536;
// More than any controller gives in one answer, and few enough to arrive in one piece: what arrives
// later, a plug-in may take for the answer to its next command.
constexpr int maximumAnswer = 2000;

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
    start();
    m_started.acquire();
}

Recorder::~Recorder()
{
    quit();
    wait();
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

void Recorder::run()
{
    QTcpServer server;
    connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
        while (QTcpSocket *const socket = server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    if (server.listen(QHostAddress(QHostAddress::LocalHost)))
        m_port = server.serverPort();
    m_started.release();
    exec();
}

void Recorder::answer(QTcpSocket *socket)
{
    for (;;) {
        const QByteArray waiting = socket->peek(maximumLine);
        const int end = waiting.indexOf('\r');
        if (end < 0) {
            if (waiting.size() == maximumLine)
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
