#pragma once

#include <QByteArray>
#include <QString>

#include <sys/time.h>

/// Turns a wait in milliseconds into the system's form: whole seconds, and the rest in
/// microseconds. A negative wait counts as none.
struct timeval socketTimevalFromMilliseconds(int ms);

/// One blocking TCP connection over IPv4 to one controller. Connecting and reading wait for at most
/// the object's time-out; sending has no bound of its own.
///
/// Every failure is a false result and a text in getError(); nothing throws. An object serves one
/// thread at a time.
class Socket
{
public:
    /// An unconnected socket without an address, as the device map builds it for an unknown device.
    Socket() = default;

    /// Connects at once, waiting for at most 1000 ms.
    Socket(QString address, int portNumber);

    /// Connects at once. `timeoutMs` is in milliseconds, for connecting and for every read; values
    /// of 1 and below mean 1000.
    Socket(QString address, int portNumber, int timeoutMs);

    /// Takes the connection over; `other` is left unconnected. The error text is not taken along.
    Socket(Socket &&other) noexcept;

    /// Takes the connection over and keeps the own error text. A connection held before is not
    /// closed.
    Socket &operator=(Socket &&other) noexcept;

    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    /// Closes the connection if there is one.
    ~Socket();

    /// Opens a new connection and stores its descriptor where `descriptor` points, waiting for at
    /// most `timeoutMs` milliseconds. Success is not stored in the object; a failure disconnects
    /// it.
    bool connect(QString address, int portNumber, int *descriptor, int timeoutMs);

    /// Connects again with the stored address, port and time-out. A connection that is still open
    /// is not closed by this.
    bool reConnect();

    /// Closes the connection; always returns false. The descriptor's number stays readable, but is
    /// not touched again.
    bool disconnect();

    /// Whether the connection is taken to be usable. A peer that closed it is only noticed by using
    /// it.
    bool isConnected() const;

    /// Waits for an answer and replaces `data` by what one receive delivers, at most 65535 bytes.
    /// No attempt is made to complete an answer that comes in pieces. After a time-out the
    /// connection is closed; after an orderly close by the peer it is not.
    bool read(QByteArray *data);

    /// Sends the bytes with one call. What the system did not take is not sent.
    bool write(QByteArray data);

    /// The same for `length` bytes from `data`; a negative length is refused.
    bool write(const void *data, int length);

    QString getIp() const;
    int getPort() const;
    /// The descriptor's number; -1 before the first connect and after a move.
    int getSockfd() const;
    /// The text of the last failure, or "OK".
    QString getError() const;
    void setError(const QString &text);

    /// Whether this is the connection to that address (compared as text) and port.
    bool hasIpAndPort(QString address, int portNumber) const;

    /// Whether both go to the same address (compared as text) and port.
    bool operator==(const Socket &other) const;

private:
    bool openConnection(int descriptor, const QString &address, int portNumber, int timeoutMs);
    bool waitForConnection(int descriptor, int timeoutMs);
    bool failAfterDisconnect(const QString &what);
    bool setBlocking(int descriptor, bool blocking);
    int usableDescriptor() const;

    int sockfd = -1;
    int port = 0;
    int timeout = 1000;
    bool connected = false;
    int defaultTimeout = 1000;
    QString ip;
    QString error;
    // Whether the number in sockfd is ours to use and to close: after a disconnect the process may
    // have given the same number to something else.
    bool descriptorOpen = false;
};
