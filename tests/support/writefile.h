#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Writes a new file, or an existing one anew. False when that failed.
inline bool writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}
