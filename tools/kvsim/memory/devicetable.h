#pragma once

#include <QByteArray>

#include <optional>

enum class DeviceKind { Word, Bit };

/// The largest value that one element of a device holds: 65535 for a word, 1 for a bit.
constexpr quint16 maximumValue(DeviceKind kind)
{
    return kind == DeviceKind::Bit ? 1 : 65535;
}

/// How the number behind a device's name is written.
enum class Notation {
    Decimal,
    Hexadecimal,
    /// Decimal; the last two digits are the bit (00 to 15), those before them the channel.
    ChannelAndBit,
};

enum class Access { ReadWrite, ReadOnly };

/// One memory area of the controller.
struct Device
{
    const char *name;
    /// The other name of the same memory, or a null pointer.
    const char *alias;
    DeviceKind kind;
    Notation notation;
    /// The highest number, as it reads in `notation`. The lowest is always 0.
    quint32 last;
    Access access;
};

/// One word or one bit that exists.
struct Address
{
    const Device *device;
    /// Position in the device, counted from 0 without gaps: R015 is 15, R100 is 16.
    quint32 index;
};

/// Neighbouring words or bits.
struct Range
{
    Address first;
    quint32 count;
};

/// Whether they have a word or bit in common.
bool overlap(const Range &one, const Range &other);

/// The address that `text` ("DM100", "R015", "W1F") names, or nothing when there is no such device
/// or no such number.
std::optional<Address> parseAddress(const QByteArray &text);

/// The words or bits from one address to another; nothing when there are none.
std::optional<Range> parseRange(const QByteArray &first, const QByteArray &last);

/// The text that parseAddress() reads back: "DM100", "R015", "W1F".
QByteArray addressText(Address address);

/// How many words or bits there are from `address` to the end of its device, itself included.
quint32 countToEnd(Address address);

Q_DECLARE_TYPEINFO(Range, Q_PRIMITIVE_TYPE);
