#include "control/ctl.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>
#include <QHostAddress>
#include <QTcpSocket>

namespace {

constexpr int timeout = 5000; // milliseconds

ExitCode refuse(const QString &text)
{
    printError(text + u" See kvsim ctl --help.");
    return WrongUsage;
}

/// A line, "error ..." or lines up to an empty one; nothing when it did not come whole.
QByteArray readAnswer(QTcpSocket *socket, bool severalLines)
{
    QByteArray answer;
    for (;;) {
        while (!socket->canReadLine()) {
            if (!socket->waitForReadyRead(timeout))
                return {};
        }
        const QByteArray line = socket->readLine();
        if (!severalLines || line.startsWith("error "))
            return line;
        if (line == "\n")
            return answer;
        answer += line;
    }
}

ExitCode askSimulator(quint16 port, const QString &command)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    QByteArray answer;
    if (socket.waitForConnected(timeout)) {
        socket.write(command.toUtf8() + '\n');
        answer = readAnswer(&socket, command.endsWith(u"counters"));
    }
    if (answer.isEmpty()) {
        printError(QStringLiteral("no answer from 127.0.0.1:%1: %2. Start the simulator with "
                                  "--control %1, or choose another --port.")
                       .arg(port)
                       .arg(socket.errorString()));
        return ErrorFound;
    }
    if (answer.startsWith("error ")) {
        printError(QString::fromUtf8(answer.mid(6).trimmed()));
        return ErrorFound;
    }
    return answer == "ok\n" ? AllWell : printOutput(QString::fromUtf8(answer));
}

} // namespace

ExitCode runCtl(const QStringList &arguments)
{
    const QString help = QStringLiteral("help");
    const QString portOption = QStringLiteral("port");
    QCommandLineParser parser;
    // A value may begin with a minus sign.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addOptions({
        QCommandLineOption(QStringList{QStringLiteral("h"), help}),
        {portOption, {}, QStringLiteral("value"), QStringLiteral("8502")},
    });
    if (!parser.parse(QStringList{QStringLiteral("kvsim")} + arguments))
        return refuse(parser.errorText());
    if (parser.isSet(help))
        return printHelp();
    const std::optional<int> port = wholeNumber(parser.value(portOption), 1, 65535);
    if (!port)
        return refuse(QStringLiteral("'%1' is no port; --port takes a number from 1 to 65535.")
                          .arg(parser.value(portOption)));
    const QString command = parser.positionalArguments().join(u' ').simplified();
    if (command.isEmpty())
        return refuse(QStringLiteral("No command."));
    return askSimulator(static_cast<quint16>(*port), command);
}
