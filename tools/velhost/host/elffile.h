#pragma once

#include <QIODevice>
#include <QString>

#include <optional>

/// What the first bytes of a program or a shared library say of it.
struct ElfHeader
{
    bool is64Bit = false;
    bool isBigEndian = false;
    /// The processor, by its number in ELF files.
    quint16 machine = 0;
    /// What the processor must have besides.
    quint32 flags = 0;
    /// Where the table of sections lies in the file, which is mostly its end.
    quint64 tableOffset = 0;
    quint32 tableSize = 0;
};

/// Reads the header at the start of the device. Returns nothing when there is none.
std::optional<ElfHeader> readElfHeader(QIODevice *device);

/// Whether a file of that size ends before the table of sections does.
bool isTruncated(const ElfHeader &header, qint64 fileSize);

/// Whether code of both can run in one process. Where one does not tell its kind of floating point,
/// that does not count.
bool haveSameProcessor(const ElfHeader &one, const ElfHeader &other);

/// For example "arm (32 bit, little endian, hard float)".
QString processorText(const ElfHeader &header);
