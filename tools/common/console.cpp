#include <common/console.h>

#include <common/visibletext.h>

#include <QCoreApplication>
#include <QFile>

#include <cerrno>

bool print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

ExitCode printOutput(const QString &text)
{
    if (print(stdout, text))
        return AllWell;
    printError(u"cannot write to standard output: " + qt_error_string(errno));
    return ErrorFound;
}

ExitCode printHelp()
{
    QFile file(QStringLiteral(":/help.txt"));
    return printOutput(file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                      : QString());
}

void printError(const QString &text)
{
    print(stderr, QCoreApplication::applicationName() + u": " + visible(text) + u'\n');
}

void printError(const QStringList &texts)
{
    for (const QString &text : texts)
        printError(text);
}
