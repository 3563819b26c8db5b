// In place of libFuzzer: feeds every file of the folders that are named to the target, once.

#include "entry.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

bool feedFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(fileName));
        return false;
    }
    const QByteArray bytes = file.readAll();
    // The target may end the program; then this line has named the file.
    std::printf("%s\n", qPrintable(fileName));
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                           static_cast<std::size_t>(bytes.size()));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    int fed = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir folder(QString::fromLocal8Bit(argv[i]));
        const QStringList names = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
        for (const QString &name : names) {
            if (!feedFile(folder.filePath(name)))
                return 1;
            ++fed;
        }
    }
    std::printf("%d files fed\n", fed);
    return fed > 0 ? 0 : 1;
}
