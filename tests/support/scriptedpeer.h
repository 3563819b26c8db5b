#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

/// What the peer does when it has received one command line.
struct Answer
{
    enum Then { KeepOpen, Close };

    QByteArray bytes;
    Then then = KeepOpen;
};

/// Answers that keep the connection open.
inline QList<Answer> script(const QByteArrayList &answers)
{
    QList<Answer> result;
    for (const QByteArray &bytes : answers)
        result.append({bytes});
    return result;
}

/// A controller that follows a script: a TCP server on a free loopback port, in a thread of its
/// own. The n-th command line (ended by a carriage return), over all connections, gets the n-th
/// answer; a line beyond the script is recorded and gets none.
class ScriptedPeer
{
public:
    explicit ScriptedPeer(QList<Answer> script = {});
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer &) = delete;
    ScriptedPeer &operator=(const ScriptedPeer &) = delete;

    int port() const { return m_port; }

    /// Waits until that many connections were accepted; false after ten seconds.
    bool waitForConnections(int count);

    /// Sends bytes on the newest connection without a command.
    void send(const QByteArray &bytes);

    /// Closes the newest connection.
    void closeConnection();

    /// Stops listening and waits until every client has closed its connection, ten seconds at most.
    /// Then returns all that was received, connection after connection.
    QByteArray finish();

    /// The number of connections accepted so far; all of them after finish().
    int connectionCount();

private:
    struct Connection
    {
        int descriptor = -1;
        QByteArray received;
        int served = 0;
    };

    void run();
    void acceptPending();
    void receive(Connection &connection);
    void answerLines(Connection &connection);
    static void closeDescriptor(int &descriptor);

    const QList<Answer> m_script;
    int m_nextAnswer = 0;
    int m_port = 0;
    int m_listener = -1;
    int m_wake = -1;
    std::mutex m_mutex;
    std::condition_variable m_accepted;
    std::vector<Connection> m_connections;
    bool m_finishing = false;
    std::thread m_thread;
};
