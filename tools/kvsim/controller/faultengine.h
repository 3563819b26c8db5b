#pragma once

#include "controller/fault.h"
#include "controller/reply.h"

#include <QMutex>
#include <QRandomGenerator>
#include <QVector>

class Memory;
struct Line;
struct Profile;

/// How often a fault could have struck, and how often it did.
struct FaultCount
{
    /// The fault as it was written.
    QByteArray text;
    /// Commands that touch its address, or new clients.
    quint64 seen = 0;
    quint64 applied = 0;
};

/// The faults that are in force. It decides what happens to each command and each new client,
/// without a socket and without a clock. Safe to use from several threads.
class FaultEngine
{
public:
    /// Puts a fault in force, see parseFault(); its counters begin at 0. Returns an empty text, or
    /// what is wrong: then nothing has changed.
    QString add(const QByteArray &text);

    /// Ends all faults. Actions that they have begun are still carried out.
    void clear();

    /// Ends the faults that were written so. False when there are none.
    bool remove(const QByteArray &text);

    /// The counts of every fault in force, in the order in which they were added.
    QVector<FaultCount> counts() const;

    /// What happens to a command: the controller with such a memory executes it unless the fault
    /// prevents that. `previous` is the proper answer to the same client's command before, empty
    /// when it is its first. Every fault that the command fits sees it; the first one that strikes
    /// is applied.
    Reply reply(const Line &line, const QByteArray &previous, const Profile &profile,
                Memory *memory);

    /// The fault that strikes a new client while `connected` others are there.
    std::optional<Fault> welcome(int connected);

private:
    struct Entry
    {
        Fault fault;
        QRandomGenerator random;
        FaultCount count;
    };

    static bool strikesNow(Entry *entry);

    mutable QMutex m_mutex;
    QVector<Entry> m_entries;
};
