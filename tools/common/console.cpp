#include <common/console.h>

#include <common/visibletext.h>

#include <QCoreApplication>

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
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
