#pragma once

#include "programrun.h"
#include "text.h"

#include <QEventLoop>
#include <QTcpSocket>
#include <QTimer>
#include <QUdpSocket>

/// A port of 127.0.0.1 that is bound by TCP and by UDP, but never answers.
class SilentPort
{
public:
    SilentPort()
    {
        m_tcp.bind(QHostAddress(QHostAddress::LocalHost), 0, QAbstractSocket::DontShareAddress);
        m_udp.bind(QHostAddress(QHostAddress::LocalHost), 0, QAbstractSocket::DontShareAddress);
    }

    QString tcp() const { return QString::number(m_tcp.localPort()); }
    QString udp() const { return QString::number(m_udp.localPort()); }

private:
    QTcpSocket m_tcp;
    QUdpSocket m_udp;
};

/// A search waits for UDP answers a quarter of its time, at most a second. This is enough on
/// loopback, even on a busy machine.
inline QStringList shortSearch()
{
    return {text("--timeout"), text("1600")};
}

/// The arguments of a search with that plug-in. The default area is 127.0.0.0/28: no search of a
/// test may leave the machine.
inline QStringList searchArguments(const char *plugin, const QString &udpPorts,
                                   const QString &tcpPorts, const QStringList &more = {},
                                   const QStringList &area
                                   = {text("--subnet"), text("127.0.0.0/28")})
{
    return QStringList{text("discover"), text("--plugin"),    text(plugin), text("--udp-ports"),
                       udpPorts,         text("--tcp-ports"), tcpPorts}
           + area + more;
}

/// Runs the program to its end, at most half a minute, while the test's own event loop runs.
inline ProgramRun runBesideLoop(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    QEventLoop loop;
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    process.start(program, arguments, QIODevice::ReadOnly);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    if (process.state() != QProcess::NotRunning)
        return {-1, {}, QStringLiteral("did not end")};
    const bool isNormal = process.exitStatus() == QProcess::NormalExit;
    return {isNormal ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
