#include "program/terminal.h"

#include <common/visibletext.h>

#include <QFile>

#include <cerrno>
#include <cstdio>

int fail(ExitCode code, const QString &text)
{
    const QString line = QLatin1String("kvsim: ") + visible(text) + QLatin1Char('\n');
    std::fputs(line.toLocal8Bit().constData(), stderr);
    return code;
}

// Flushed, because a script waits for the first line; checked, because it would wait for ever.
int print(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    if (std::fputs(bytes.constData(), stdout) < 0 || std::fflush(stdout) != 0)
        return fail(Failure,
                    QLatin1String("cannot write to standard output: ") + qt_error_string(errno));
    return Success;
}

int printHelp()
{
    QFile file(QStringLiteral(":/help.txt"));
    return file.open(QIODevice::ReadOnly) ? print(QString::fromUtf8(file.readAll()))
                                          : fail(Failure, file.errorString());
}
