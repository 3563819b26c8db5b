#include "memory.h"

namespace kvsim {

namespace {

quint16 freshValue(Address address)
{
    if (address.device->kind == DeviceKind::Word)
        return static_cast<quint16>(address.index % 65536);
    const quint32 channel = address.index / 16;
    const quint32 bit = address.index % 16;
    return (channel >> bit) & 1U;
}

} // namespace

quint16 Memory::value(Address address) const
{
    const QMutexLocker locker(&m_mutex);
    const auto written = m_written.constFind({address.device, address.index});
    return written == m_written.constEnd() ? freshValue(address) : *written;
}

void Memory::setValue(Address address, quint16 value)
{
    const QMutexLocker locker(&m_mutex);
    m_written.insert({address.device, address.index}, value);
}

} // namespace kvsim
