#pragma once

#include "writefile.h"

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
        return writeFile(path(name), content) ? path(name) : QString();
    }

    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};
