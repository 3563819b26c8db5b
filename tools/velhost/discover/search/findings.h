#pragma once

#include "discover/search/identity.h"

#include <QMap>

#include <tuple>

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
