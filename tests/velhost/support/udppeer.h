#pragma once

#include <QHostAddress>
#include <QList>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <utility>

/// Answers each datagram with all `answers`. Port 0 is a free port. Needs the event loop of its
/// thread.
class UdpPeer
{
public:
    explicit UdpPeer(QList<QByteArray> answers,
                     const QHostAddress &address = QHostAddress(QHostAddress::LocalHost),
                     quint16 port = 0)
        : m_answers(std::move(answers))
    {
        m_socket.bind(address, port, QAbstractSocket::DontShareAddress);
        QObject::connect(&m_socket, &QUdpSocket::readyRead, &m_socket, [this] { answer(); });
    }

    quint16 port() const { return m_socket.localPort(); }
    const QList<QByteArray> &questions() const { return m_questions; }

private:
    void answer()
    {
        while (m_socket.hasPendingDatagrams()) {
            const QNetworkDatagram question = m_socket.receiveDatagram();
            m_questions.append(question.data());
            for (const QByteArray &bytes : std::as_const(m_answers))
                m_socket.writeDatagram(question.makeReply(bytes));
        }
    }

    QList<QByteArray> m_answers;
    QList<QByteArray> m_questions;
    QUdpSocket m_socket;
};
