#include <common/outputfile.h>

#include <QSaveFile>

namespace {

QString errorOf(const QSaveFile &file)
{
    return file.fileName() + u": cannot be written: " + file.errorString();
}

} // namespace

// The new file beside it is removed at once.
QString outputFileError(const QString &fileName)
{
    QSaveFile file(fileName);
    return file.open(QIODevice::WriteOnly) ? QString() : errorOf(file);
}

QString writeOutputFile(const QString &fileName, const QByteArray &content)
{
    QSaveFile file(fileName);
    // commit() alone misses that the rest of what is buffered cannot be written.
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
                           && file.flush() && file.commit();
    return isWritten ? QString() : errorOf(file);
}
