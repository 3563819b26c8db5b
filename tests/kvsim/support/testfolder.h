#pragma once

#include <QFile>
#include <QTemporaryDir>

/// A folder of its own with files in it.
class TestFolder
{
public:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// Writes a file; its path, empty when it could not be written.
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        const bool written
            = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        return written ? path(name) : QString();
    }

    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};
