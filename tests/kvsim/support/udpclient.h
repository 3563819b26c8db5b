#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QUdpSocket>

/// A client that blocks, as TextClient does, but speaks UDP.
class UdpClient
{
public:
    static constexpr int timeout = 10000;

    explicit UdpClient(quint16 port) : m_port(port)
    {
        m_socket.bind(QHostAddress(QHostAddress::LocalHost), 0, QAbstractSocket::DontShareAddress);
    }

    QUdpSocket *socket() { return &m_socket; }

    void send(const QByteArray &datagram)
    {
        m_socket.writeDatagram(datagram, QHostAddress(QHostAddress::LocalHost), m_port);
    }

    /// The next datagram, or nothing.
    QByteArray receive()
    {
        if (!m_socket.hasPendingDatagrams() && !m_socket.waitForReadyRead(timeout))
            return {};
        QByteArray datagram(static_cast<int>(m_socket.pendingDatagramSize()), '\0');
        datagram.resize(static_cast<int>(m_socket.readDatagram(datagram.data(), datagram.size())));
        return datagram;
    }

    QByteArray ask(const QByteArray &datagram)
    {
        send(datagram);
        return receive();
    }

private:
    QUdpSocket m_socket;
    quint16 m_port;
};
