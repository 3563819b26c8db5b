#pragma once

#include "programrun.h"
#include "text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// Settings of the library by which it writes to that file what goes over connections to the port.
inline QMap<QString, QString> tracing(const QString &fileName, int port)
{
    return {{text("VEL_TRACE"), fileName}, {text("VEL_TRACE_PORTS"), QString::number(port)}};
}

/// The environment of a program that the library is loaded into, with these settings alone.
inline QProcessEnvironment tracedEnvironment(const QMap<QString, QString> &settings)
{
    QProcessEnvironment environment = plainEnvironment();
    const QString preload = text(TRACE_PRELOAD);
    environment.insert(preload.section(u'=', 0, 0), preload.section(u'=', 1));
    for (auto setting = settings.begin(); setting != settings.end(); ++setting)
        environment.insert(setting.key(), setting.value());
    return environment;
}

/// Runs trace-client with these actions.
inline ProgramRun runClient(int port, const QStringList &actions,
                            const QProcessEnvironment &environment)
{
    return runProgram(text(TRACE_CLIENT), QStringList{QString::number(port)} + actions,
                      QDir::tempPath(), environment);
}

inline QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The lines of a trace without what is another in each run: the time, the process, and how long
/// the host waited.
inline QStringList linesOf(const QString &fileName, int port)
{
    static const QRegularExpression head(
        text("^\\{\"time\":\"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6}Z\","
             "\"process\":([0-9]+),\"thread\":\\1,"));
    static const QRegularExpression wait(text("\"waited_us\":[0-9]+"));
    QStringList lines = QString::fromUtf8(contentOf(fileName)).split(u'\n');
    // The text behind the last line feed, which should be none.
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (QString &line : lines)
        line.replace(head, text("{"))
            .replace(wait, text("\"waited_us\":N"))
            .replace(u"127.0.0.1:" + QString::number(port), text("PEER"));
    return lines;
}

/// The lines that linesOf() gives for a trace of one connection.
inline QStringList tracedLines(const QList<const char *> &events)
{
    QStringList lines;
    for (const char *const event : events)
        lines.append(text(R"({"connection":1,"peer":"PEER","event":)") + text(event) + u'}');
    return lines;
}
