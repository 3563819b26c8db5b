#pragma once

#include <QDeadlineTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <csignal>

/// The result of running a program.
struct ProgramRun
{
    /// -1 when the program crashed or did not end.
    int exitCode = -1;
    QString output;
    QString errors;
};

/// The test's own environment without the variables that change where plug-ins are searched.
inline QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_PLUGIN_PATH"));
    environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
    return environment;
}

/// Runs the program in `folder` to its end. The limit of two minutes is only for a program that
/// hangs, even on a busy machine.
inline ProgramRun runProgram(const QString &program, const QStringList &arguments,
                             const QString &folder,
                             const QProcessEnvironment &environment = plainEnvironment())
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environment);
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForFinished(120000))
        return {-1, {}, process.errorString()};
    const bool ended = process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// Presses Ctrl+C until the program has ended, ten seconds at most. Returns how often.
inline int interruptUntilEnd(QProcess *process)
{
    const QDeadlineTimer deadline(10000);
    int presses = 0;
    do {
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        ++presses;
    } while (!process->waitForFinished(10) && !deadline.hasExpired());
    return presses;
}

/// Replaces every time by "T", except those of 2024, which come from a plant file.
inline QString withoutCurrentTimes(QString lines)
{
    static const QRegularExpression time(
        QStringLiteral("(?!2024)[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:.]{12}[+-][0-9]{2}:[0-9]{2}"));
    return lines.replace(time, QStringLiteral("T"));
}

/// Replaces every time by "T".
inline QString withoutTimes(QString lines)
{
    static const QRegularExpression time(
        QStringLiteral("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:.]{12}[+-][0-9]{2}:[0-9]{2}"));
    return lines.replace(time, QStringLiteral("T"));
}
