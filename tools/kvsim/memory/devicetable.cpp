#include "memory/devicetable.h"

#include "memory/number.h"

#include <QStringBuilder>

#include <array>

namespace {

constexpr quint32 bitsPerChannel = 16;

/// The devices of a large KV-7500. CM and CR hold the controller's own state.
constexpr std::array<Device, 14> devices{{
    {"DM", "D", DeviceKind::Word, Notation::Decimal, 65534, Access::ReadWrite},
    {"EM", "E", DeviceKind::Word, Notation::Decimal, 65534, Access::ReadWrite},
    {"FM", "F", DeviceKind::Word, Notation::Decimal, 32767, Access::ReadWrite},
    {"ZF", nullptr, DeviceKind::Word, Notation::Decimal, 524287, Access::ReadWrite},
    {"TM", nullptr, DeviceKind::Word, Notation::Decimal, 511, Access::ReadWrite},
    {"CM", nullptr, DeviceKind::Word, Notation::Decimal, 5999, Access::ReadOnly},
    {"VM", nullptr, DeviceKind::Word, Notation::Decimal, 59999, Access::ReadWrite},
    {"Z", nullptr, DeviceKind::Word, Notation::Decimal, 12, Access::ReadWrite},
    {"W", nullptr, DeviceKind::Word, Notation::Hexadecimal, 0x7FFF, Access::ReadWrite},
    {"R", nullptr, DeviceKind::Bit, Notation::ChannelAndBit, 199915, Access::ReadWrite},
    {"MR", "M", DeviceKind::Bit, Notation::ChannelAndBit, 399915, Access::ReadWrite},
    {"LR", "L", DeviceKind::Bit, Notation::ChannelAndBit, 99915, Access::ReadWrite},
    {"CR", nullptr, DeviceKind::Bit, Notation::ChannelAndBit, 7915, Access::ReadOnly},
    {"B", nullptr, DeviceKind::Bit, Notation::Hexadecimal, 0x7FFF, Access::ReadWrite},
}};

struct NamedDevice
{
    const Device *device = nullptr;
    int nameLength = 0;
};

/// The longest name wins: "ZF1" is ZF and not Z, "DM1" is DM and not D.
NamedDevice longestMatch(const QByteArray &text)
{
    NamedDevice best;
    for (const Device &device : devices) {
        for (const char *name : {device.name, device.alias}) {
            const auto length = static_cast<int>(qstrlen(name));
            if (length > best.nameLength && text.startsWith(name))
                best = {&device, length};
        }
    }
    return best;
}

bool exists(const Device &device, quint32 number)
{
    if (device.notation == Notation::ChannelAndBit && number % 100 >= bitsPerChannel)
        return false;
    return number <= device.last;
}

quint32 indexOf(const Device &device, quint32 number)
{
    if (device.notation == Notation::ChannelAndBit)
        return number / 100 * bitsPerChannel + number % 100;
    return number;
}

} // namespace

std::optional<Address> parseAddress(const QByteArray &text)
{
    const auto [device, nameLength] = longestMatch(text);
    if (!device)
        return std::nullopt;

    const int base = device->notation == Notation::Hexadecimal ? 16 : 10;
    const std::optional<quint32> number = parseNumber(text.mid(nameLength), base);
    if (!number || !exists(*device, *number))
        return std::nullopt;
    return Address{device, indexOf(*device, *number)};
}

std::optional<Range> parseRange(const QByteArray &first, const QByteArray &last)
{
    const std::optional<Address> begin = parseAddress(first);
    const std::optional<Address> end = parseAddress(last);
    if (!begin || !end || begin->device != end->device || begin->index > end->index)
        return std::nullopt;
    return Range{*begin, end->index - begin->index + 1};
}

bool overlap(const Range &one, const Range &other)
{
    const auto end = [](const Range &range) { return quint64(range.first.index) + range.count; };
    return one.first.device == other.first.device && one.first.index < end(other)
           && other.first.index < end(one);
}

QByteArray addressText(Address address)
{
    const quint32 index = address.index;
    const QByteArray name(address.device->name);
    switch (address.device->notation) {
    case Notation::Decimal:
        break;
    case Notation::Hexadecimal:
        return name + QByteArray::number(index, 16).toUpper();
    case Notation::ChannelAndBit:
        return name + QByteArray::number(index / bitsPerChannel)
               + QByteArray::number(index % bitsPerChannel).rightJustified(2, '0');
    }
    return name + QByteArray::number(index);
}

quint32 countToEnd(Address address)
{
    return indexOf(*address.device, address.device->last) - address.index + 1;
}
