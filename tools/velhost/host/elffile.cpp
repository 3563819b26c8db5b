#include "host/elffile.h"

#include <QDataStream>
#include <QHash>

#include <elf.h>

namespace {

constexpr quint32 floatFlags = EF_ARM_ABI_FLOAT_HARD | EF_ARM_ABI_FLOAT_SOFT;

/// Reads an address or an offset, whose size depends on the class of the file.
quint64 readWide(QDataStream *stream, bool is64Bit)
{
    if (is64Bit) {
        quint64 value = 0;
        *stream >> value;
        return value;
    }
    quint32 value = 0;
    *stream >> value;
    return value;
}

quint32 floatAbi(const ElfHeader &header)
{
    return header.machine == EM_ARM ? header.flags & floatFlags : 0;
}

QString machineName(quint16 machine)
{
    static const QHash<quint16, QString> names{
        {EM_386, QStringLiteral("i386")},      {EM_ARM, QStringLiteral("arm")},
        {EM_X86_64, QStringLiteral("x86_64")}, {EM_AARCH64, QStringLiteral("arm64")},
        {EM_MIPS, QStringLiteral("mips")},     {EM_PPC, QStringLiteral("power")},
        {EM_PPC64, QStringLiteral("power64")}, {EM_RISCV, QStringLiteral("riscv")}};
    return names.value(machine, QStringLiteral("processor %1").arg(machine));
}

} // namespace

std::optional<ElfHeader> readElfHeader(QIODevice *device)
{
    const QByteArray identity = device->read(EI_NIDENT);
    if (identity.size() < EI_NIDENT || !identity.startsWith(ELFMAG))
        return {};
    ElfHeader header;
    header.is64Bit = identity.at(EI_CLASS) == ELFCLASS64;
    header.isBigEndian = identity.at(EI_DATA) == ELFDATA2MSB;

    QDataStream stream(device);
    stream.setByteOrder(header.isBigEndian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    quint16 type = 0;
    quint32 version = 0;
    stream >> type >> header.machine >> version;
    readWide(&stream, header.is64Bit); // entry point
    readWide(&stream, header.is64Bit); // offset of the program header table
    header.tableOffset = readWide(&stream, header.is64Bit);
    quint16 headerSize = 0;
    quint16 segmentSize = 0;
    quint16 segmentCount = 0;
    quint16 sectionSize = 0;
    quint16 sectionCount = 0;
    stream >> header.flags >> headerSize >> segmentSize >> segmentCount >> sectionSize
        >> sectionCount;
    header.tableSize = quint32(sectionSize) * sectionCount;
    return stream.status() == QDataStream::Ok ? std::optional(header) : std::nullopt;
}

bool isTruncated(const ElfHeader &header, qint64 fileSize)
{
    const auto size = static_cast<quint64>(fileSize);
    return header.tableOffset > size || header.tableSize > size - header.tableOffset;
}

bool haveSameProcessor(const ElfHeader &one, const ElfHeader &other)
{
    const quint32 oneFloat = floatAbi(one);
    const quint32 otherFloat = floatAbi(other);
    return one.is64Bit == other.is64Bit && one.isBigEndian == other.isBigEndian
           && one.machine == other.machine
           && (oneFloat == otherFloat || oneFloat == 0 || otherFloat == 0);
}

QString processorText(const ElfHeader &header)
{
    QString text = QStringLiteral("%1 (%2 bit, %3 endian")
                       .arg(machineName(header.machine),
                            header.is64Bit ? QStringLiteral("64") : QStringLiteral("32"),
                            header.isBigEndian ? QStringLiteral("big") : QStringLiteral("little"));
    if (floatAbi(header) == EF_ARM_ABI_FLOAT_HARD)
        text += u", hard float";
    if (floatAbi(header) == EF_ARM_ABI_FLOAT_SOFT)
        text += u", soft float";
    return text + u')';
}
