#include <common/inputfile.h>

#include <QFile>

std::optional<QByteArray> readInputFile(const QString &fileName, const QString &tooLargeText,
                                        QString *error)
{
    constexpr qint64 maximumSize = 16LL * 1024 * 1024;
    QFile file(fileName);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray bytes = isOpen ? file.read(maximumSize + 1) : QByteArray();
    if (file.error() != QFileDevice::NoError) {
        *error = u"cannot be read: " + file.errorString();
        return {};
    }
    if (bytes.size() > maximumSize) {
        *error = tooLargeText;
        return {};
    }
    return bytes;
}
