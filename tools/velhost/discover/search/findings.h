#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <tuple>

/// The command that a controller answers with its model code.
inline const QByteArray identityQuestion = QByteArrayLiteral("?K\r");

/// What kvsim answers at the port of its control commands.
inline const QString simulatorControl = QStringLiteral("error this is the control port of kvsim");

/// The rest of a longer answer is ignored.
constexpr int maximumIdentity = 64;

/// The answer to the question.
struct Identity
{
    /// Whether it is a model code of one to three digits, or E and a digit: a controller that
    /// refuses the question.
    bool isController = false;
    /// The first line of the answer without its end.
    QString text;
};

/// Reads the first line of the answer. `isWhole` means that the answer is complete, as a datagram
/// is; otherwise a line without an end is no controller's.
Identity identityOf(const QByteArray &bytes, bool isWhole);

/// The name of the model with that code; empty when it is not known.
QString modelName(const QString &code);

/// What answered at one port of one address.
struct Finding
{
    quint32 address = 0;
    quint16 port = 0;
    Identity identity;
    bool byTcp = false;
    bool byUdp = false;

    bool isController() const { return identity.isController; }
    /// ADDRESS:PORT
    QString place() const;
    /// TCP, UDP or both.
    QString protocols() const;
};

/// Everything that answered, sorted by address and port. The same answer by TCP and by UDP is one
/// finding.
class Findings
{
public:
    /// The limit of the memory: anybody in the network can send answers. More answers only set
    /// isFull().
    static constexpr int maximum = 4096;

    void add(const Finding &finding);

    using Key = std::tuple<quint32, quint16, QString, bool>;
    const QMap<Key, Finding> &all() const { return m_all; }
    int controllerCount() const;
    bool isFull() const { return m_isFull; }

private:
    QMap<Key, Finding> m_all;
    bool m_isFull = false;
};
