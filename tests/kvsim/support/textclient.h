#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpSocket>

/// A client that blocks and needs no event loop. Every wait ends after ten seconds, which only a
/// failing test needs.
class TextClient
{
public:
    static constexpr int timeout = 10000;

    explicit TextClient(quint16 port)
    {
        m_socket.bind(QHostAddress(QHostAddress::LocalHost));
        m_localPort = m_socket.localPort();
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        m_socket.waitForConnected(timeout);
    }

    QTcpSocket *socket() { return &m_socket; }

    /// Also when the connection is gone already.
    quint16 localPort() const { return m_localPort; }

    void send(const QByteArray &bytes)
    {
        m_socket.write(bytes);
        while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(timeout)) {
        }
    }

    /// The next `count` bytes, or fewer when they did not come in time.
    QByteArray receive(int count)
    {
        while (m_socket.bytesAvailable() < count && m_socket.waitForReadyRead(timeout)) {
        }
        return m_socket.read(count);
    }

    /// The next line, or nothing.
    QByteArray receiveLine()
    {
        while (!m_socket.canReadLine()) {
            if (!m_socket.waitForReadyRead(timeout))
                return {};
        }
        return m_socket.readLine();
    }

    QByteArray ask(const QByteArray &line)
    {
        send(line);
        return receiveLine();
    }

    /// Everything up to the end of the connection.
    QByteArray receiveToEnd()
    {
        while (m_socket.waitForReadyRead(timeout)) {
        }
        return m_socket.readAll();
    }

private:
    QTcpSocket m_socket;
    quint16 m_localPort = 0;
};
