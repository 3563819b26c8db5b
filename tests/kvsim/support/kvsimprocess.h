#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

/// The built simulator, KVSIM_PROGRAM, as a process of its own.
class KvsimProcess
{
public:
    static constexpr int timeout = 10000;

    /// Waits for so many lines of output. `before` is what a shell does first, in the same process,
    /// for example "ulimit -n 64".
    explicit KvsimProcess(const QStringList &arguments, int lines = 1, const QString &before = {})
    {
        const QString program = QStringLiteral(KVSIM_PROGRAM);
        if (before.isEmpty())
            m_process.start(program, arguments);
        else
            m_process.start(QStringLiteral("/bin/sh"),
                            QStringList{QStringLiteral("-c"),
                                        before + QStringLiteral("; exec \"$0\" \"$@\""), program}
                                + arguments);
        for (int i = 0; i < lines; ++i)
            m_lines.append(nextLine());
    }

    QProcess *process() { return &m_process; }

    /// The lines that were waited for, without their line ends; a line that did not come is empty.
    QList<QByteArray> lines() const { return m_lines; }

    /// The number behind the last colon of such a line; 0 when there is none.
    quint16 port(int line = 0) const
    {
        const QByteArray text = m_lines.value(line);
        return text.mid(text.lastIndexOf(':') + 1).toUShort();
    }

    /// Ends the program by SIGTERM. True when it ended with exit code 0.
    bool terminate()
    {
        m_process.terminate();
        return m_process.waitForFinished(timeout) && m_process.exitStatus() == QProcess::NormalExit
               && m_process.exitCode() == 0;
    }

    /// What it has printed to standard error since the last call.
    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QByteArray nextLine()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(timeout))
                return {};
        }
        return m_process.readLine().trimmed();
    }

    QProcess m_process;
    QList<QByteArray> m_lines;
};
