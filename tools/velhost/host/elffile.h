#pragma once

#include <QString>

#include <optional>

/// What the header of a program or a shared library tells about its processor.
struct ElfHeader
{
    bool is64Bit = false;
    bool isBigEndian = false;
    /// The ELF number of the processor.
    quint16 machine = 0;
    /// On ARM EF_ARM_ABI_FLOAT_HARD or EF_ARM_ABI_FLOAT_SOFT; else, or when it is not told, 0.
    quint32 floatAbi = 0;
};

/// Reads the header of the file. Returns nothing when there is none.
std::optional<ElfHeader> readElfHeader(const QString &fileName);

/// Whether code of both can run in one process. The kind of floating point is compared only if both
/// headers have it.
bool haveSameProcessor(ElfHeader one, ElfHeader other);

/// For example "arm (32 bit, little endian, hard float)".
QString processorText(ElfHeader header);
