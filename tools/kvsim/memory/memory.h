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

/// The content of the controller's devices. Memory that was never written shows its own address, so
/// that a value from a wrong place is noticed: word n holds n modulo 65536, and the sixteen bits of
/// channel n of a bit device are the binary digits of n, bit 0 the lowest.
///
/// Only written values take space. Several threads may use it at the same time.
class Memory
{
public:
    /// Milliseconds since the start.
    using Clock = std::function<qint64()>;

    /// The time of the generators starts now.
    Memory();

    /// A word (0 to 65535) or a bit (0 or 1).
    quint16 value(Address address) const;

    /// The words or bits of a range, all of the same moment.
    QVector<quint16> values(const Range &range) const;

    /// Stores a word, or a bit; `value` is at most maximumValue(). Read-only devices are stored to
    /// as well, because the controller itself changes them. A generated value does not change.
    void setValue(Address address, quint16 value);

    /// From now on `generator` gives the value. For a word it is limited to -32768 to 65535, and a
    /// negative number becomes its two's complement; for a bit it is limited to 0 and 1.
    void generate(Address address, const Generator &generator);

    bool isGenerated(Address address) const;

    /// Another clock for the generators, for tests.
    void setClock(const Clock &clock);

    /// All stored values, device by device, in the order of their addresses.
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
