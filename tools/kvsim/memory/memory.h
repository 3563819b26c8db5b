#pragma once

#include "memory/devicetable.h"
#include "memory/generator.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QPair>

/// A word or bit and the value that it holds.
struct StoredValue
{
    Address address;
    quint16 value;
};

/// The content of the controller's devices. Fresh memory tells its own address, so that a value
/// taken from a wrong place shows: word n holds n modulo 65536, and the sixteen bits of channel n
/// of a bit device are the binary digits of n, bit 0 the lowest.
///
/// Only what was written takes space. Safe to use from several threads, one word or bit at a time.
class Memory
{
public:
    /// Milliseconds since the start.
    using Clock = std::function<qint64()>;

    /// Time begins now.
    Memory();

    /// A word (0 to 65535) or a bit (0 or 1).
    quint16 value(Address address) const;

    /// The words or bits of a range, all of the same moment.
    QVector<quint16> values(const Range &range) const;

    /// Stores a word, or a bit; `value` is at most maximumValue(). Read-only devices are stored to
    /// as well, because the controller itself changes them. What is generated stays as it is.
    void setValue(Address address, quint16 value);

    /// From now on the word or bit is what `generator` says: limited to -32768 to 65535, of which
    /// the negative ones become their two's complement; for a bit, to 0 and 1.
    void generate(Address address, const Generator &generator);

    bool isGenerated(Address address) const;

    /// Another clock for the generators, for tests.
    void setClock(const Clock &clock);

    /// Everything that was stored, device by device, in the order of the addresses.
    QVector<StoredValue> stored() const;

private:
    using Key = QPair<const Device *, quint32>;

    quint16 valueNow(Address address, qint64 elapsed) const;

    mutable QMutex m_mutex;
    QHash<Key, quint16> m_written;
    QHash<Key, Generator> m_generators;
    Clock m_clock;
};

Q_DECLARE_TYPEINFO(StoredValue, Q_PRIMITIVE_TYPE);
