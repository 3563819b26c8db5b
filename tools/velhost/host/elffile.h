#pragma once

#include <QIODevice>
#include <QString>

#include <optional>

/// The header of a program or a shared library.
struct ElfHeader
{
    bool is64Bit = false;
    bool isBigEndian = false;
    /// The ELF number of the processor.
    quint16 machine = 0;
    /// Requirements on the processor, for example the kind of floating point.
    quint32 flags = 0;
    /// The offset of the section header table, which is usually at the end of the file.
    quint64 tableOffset = 0;
    quint32 tableSize = 0;
};

/// Reads the header at the start of the device. Returns nothing when there is none.
std::optional<ElfHeader> readElfHeader(QIODevice *device);

/// Whether a file of that size ends before the section header table does.
bool isTruncated(const ElfHeader &header, qint64 fileSize);

/// Whether code of both can run in one process. The kind of floating point is compared only if both
/// headers have it.
bool haveSameProcessor(const ElfHeader &one, const ElfHeader &other);

/// For example "arm (32 bit, little endian, hard float)".
QString processorText(const ElfHeader &header);
