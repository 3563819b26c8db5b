#include "host/elffile.h"

#include <QFile>
#include <QHash>
#include <QtEndian>

#include <cstring>

#include <elf.h>

namespace {

constexpr quint32 floatFlags = EF_ARM_ABI_FLOAT_HARD | EF_ARM_ABI_FLOAT_SOFT;

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

std::optional<ElfHeader> readElfHeader(const QString &fileName)
{
    QFile file(fileName);
    // The start of the header is the same for 64 bits, and flags are needed of 32-bit ARM only.
    Elf32_Ehdr raw{};
    if (!file.open(QIODevice::ReadOnly)
        || file.read(reinterpret_cast<char *>(&raw), sizeof raw) < qint64(sizeof raw)
        || std::memcmp(&raw, ELFMAG, SELFMAG) != 0)
        return {};
    const bool isBigEndian = raw.e_ident[EI_DATA] == ELFDATA2MSB;
    const auto ordered = [isBigEndian](auto number) {
        return isBigEndian ? qFromBigEndian(number) : qFromLittleEndian(number);
    };
    const quint16 machine = ordered(raw.e_machine);
    const quint32 floatAbi = machine == EM_ARM ? ordered(raw.e_flags) & floatFlags : 0;
    return ElfHeader{raw.e_ident[EI_CLASS] == ELFCLASS64, isBigEndian, machine, floatAbi};
}

bool haveSameProcessor(ElfHeader one, ElfHeader other)
{
    return one.is64Bit == other.is64Bit && one.isBigEndian == other.isBigEndian
           && one.machine == other.machine
           && (one.floatAbi == other.floatAbi || one.floatAbi == 0 || other.floatAbi == 0);
}

QString processorText(ElfHeader header)
{
    QString text = QStringLiteral("%1 (%2 bit, %3 endian")
                       .arg(machineName(header.machine),
                            header.is64Bit ? QStringLiteral("64") : QStringLiteral("32"),
                            header.isBigEndian ? QStringLiteral("big") : QStringLiteral("little"));
    if (header.floatAbi == EF_ARM_ABI_FLOAT_HARD)
        text += u", hard float";
    if (header.floatAbi == EF_ARM_ABI_FLOAT_SOFT)
        text += u", soft float";
    return text + u')';
}
