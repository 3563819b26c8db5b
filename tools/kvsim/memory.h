#pragma once

#include "devicetable.h"

#include <QHash>
#include <QMutex>
#include <QPair>

namespace kvsim {

/// The content of the controller's devices. Fresh memory tells its own address, so that a value
/// taken from a wrong place shows: word n holds n modulo 65536, and the sixteen bits of channel n
/// of a bit device are the binary digits of n, bit 0 the lowest.
///
/// Only what was written takes space. Safe to use from several threads, one word or bit at a time.
class Memory
{
public:
    /// A word (0 to 65535) or a bit (0 or 1).
    quint16 value(Address address) const;

    /// Stores a word, or a bit; `value` is at most maximumValue(). Read-only devices are stored to
    /// as well, because the controller itself changes them.
    void setValue(Address address, quint16 value);

private:
    mutable QMutex m_mutex;
    QHash<QPair<const Device *, quint32>, quint16> m_written;
};

} // namespace kvsim
