#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <limits>

#include <unistd.h>

// What another process of this machine uses. -1 when it cannot be read.

inline QByteArray processFile(qint64 process, const QString &name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The KiB of memory that is its own and not a file's. Counted page by page: the kernel's quick
/// figures, as in statm, may be some hundred KiB off.
inline int memoryKib(qint64 process)
{
    const QByteArray key("\nAnonymous:");
    const QByteArray text = processFile(process, QStringLiteral("smaps_rollup"));
    const int start = text.indexOf(key);
    return start < 0 ? -1
                     : text.mid(start + key.size(), text.indexOf(" kB", start) - start - key.size())
                           .trimmed()
                           .toInt();
}

/// How much the memory of a process grew since the mark was set.
class MemoryMark
{
public:
    explicit MemoryMark(qint64 process) : m_process(process), m_kib(memoryKib(process)) {}

    /// Always 0 under the sanitizer, which keeps what was freed; far too much when the memory
    /// cannot be read.
    int growthKib() const
    {
#ifdef __SANITIZE_ADDRESS__
        return 0;
#endif
        const int now = memoryKib(m_process);
        return m_kib > 0 && now > 0 ? now - m_kib : std::numeric_limits<int>::max();
    }

private:
    qint64 m_process;
    int m_kib;
};

inline int descriptorCount(qint64 process)
{
    const QDir folder(QStringLiteral("/proc/%1/fd").arg(process));
    return folder.exists()
               ? folder.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size()
               : -1;
}

/// The processor's time in milliseconds, in steps of mostly ten.
inline int processorMs(qint64 process)
{
    // The name of the program, in parentheses, may have blanks.
    const QByteArray stat = processFile(process, QStringLiteral("stat"));
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    const qint64 ticks = fields.at(11).toLongLong() + fields.at(12).toLongLong();
    return static_cast<int>(ticks * 1000 / ::sysconf(_SC_CLK_TCK));
}
