#include "memory/memory.h"

#include <algorithm>
#include <functional>

namespace {

quint16 freshValue(Address address)
{
    if (address.device->kind == DeviceKind::Word)
        return static_cast<quint16>(address.index % 65536);
    const quint32 channel = address.index / 16;
    const quint32 bit = address.index % 16;
    return (channel >> bit) & 1U;
}

/// The number as the controller holds it.
quint16 limited(DeviceKind kind, qint64 number)
{
    const qint64 lowest = kind == DeviceKind::Bit ? 0 : -32768;
    return static_cast<quint16>(qBound<qint64>(lowest, number, maximumValue(kind)));
}

} // namespace

Memory::Memory()
{
    QElapsedTimer timer;
    timer.start();
    m_clock = [timer] { return timer.elapsed(); };
}

quint16 Memory::value(Address address) const
{
    return values({address, 1}).constFirst();
}

QVector<quint16> Memory::values(const Range &range) const
{
    const QMutexLocker locker(&m_mutex);
    const qint64 elapsed = m_clock();
    QVector<quint16> values;
    for (quint32 i = 0; i < range.count; ++i)
        values.append(valueNow({range.first.device, range.first.index + i}, elapsed));
    return values;
}

quint16 Memory::valueNow(Address address, qint64 elapsed) const
{
    const Key key(address.device, address.index);
    const auto generator = m_generators.constFind(key);
    if (generator != m_generators.constEnd())
        return limited(address.device->kind, (*generator)(elapsed));
    const auto written = m_written.constFind(key);
    return written == m_written.constEnd() ? freshValue(address) : *written;
}

void Memory::setValue(Address address, quint16 value)
{
    const QMutexLocker locker(&m_mutex);
    const Key key(address.device, address.index);
    if (!m_generators.contains(key))
        m_written.insert(key, value);
}

void Memory::generate(Address address, const Generator &generator)
{
    const QMutexLocker locker(&m_mutex);
    m_generators.insert({address.device, address.index}, generator);
}

bool Memory::isGenerated(Address address) const
{
    const QMutexLocker locker(&m_mutex);
    return m_generators.contains({address.device, address.index});
}

void Memory::setClock(const Clock &clock)
{
    const QMutexLocker locker(&m_mutex);
    m_clock = clock;
}

QVector<StoredValue> Memory::stored() const
{
    const QMutexLocker locker(&m_mutex);
    QVector<StoredValue> values;
    for (auto entry = m_written.constBegin(); entry != m_written.constEnd(); ++entry)
        values.append({{entry.key().first, entry.key().second}, entry.value()});
    std::sort(values.begin(), values.end(), [](const StoredValue &one, const StoredValue &other) {
        if (one.address.device != other.address.device)
            return std::less<>()(one.address.device, other.address.device);
        return one.address.index < other.address.index;
    });
    return values;
}
