#include "control/ctl.h"

#include "program/terminal.h"

#include <common/wholenumber.h>

#include <QCommandLineParser>
#include <QHostAddress>
#include <QTcpSocket>

namespace {

constexpr int timeout = 5000; // milliseconds

int failUsage(const QString &text)
{
    return fail(WrongUsage, text + QLatin1String(" See kvsim ctl --help."));
}

// A line, "error ..." or lines up to an empty one; nothing when it did not come whole.
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

int askSimulator(quint16 port, const QString &command)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    const bool connected = socket.waitForConnected(timeout);
    if (connected)
        socket.write(command.toUtf8() + '\n');
    const QByteArray answer = connected
                                  ? readAnswer(&socket, command.endsWith(QLatin1String("counters")))
                                  : QByteArray();
    if (answer.isEmpty())
        return fail(Failure, QStringLiteral("no answer from 127.0.0.1:%1: %2. Start the simulator "
                                            "with --control %1, or choose another --port.")
                                 .arg(port)
                                 .arg(socket.errorString()));
    if (answer.startsWith("error "))
        return fail(Failure, QString::fromUtf8(answer.mid(6).trimmed()));
    return answer == "ok\n" ? Success : print(QString::fromUtf8(answer));
}

const QString helpOption = QStringLiteral("help");
const QString portOption = QStringLiteral("port");

void addCtlOptions(QCommandLineParser *parser)
{
    // A value may begin with a minus sign.
    parser->setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser->addOptions({
        QCommandLineOption(QStringList{QStringLiteral("h"), helpOption}),
        {portOption, {}, QStringLiteral("value"), QStringLiteral("8502")},
    });
}

} // namespace

int runCtl(const QStringList &arguments)
{
    QCommandLineParser parser;
    addCtlOptions(&parser);
    if (!parser.parse(QStringList{QStringLiteral("kvsim")} + arguments))
        return failUsage(parser.errorText());
    if (parser.isSet(helpOption))
        return printHelp();
    const std::optional<int> port = wholeNumber(parser.value(portOption), 1, 65535);
    if (!port)
        return failUsage(QStringLiteral("'%1' is no port; --port takes a number from 1 to 65535.")
                             .arg(parser.value(portOption)));
    const QString command = parser.positionalArguments().join(QLatin1Char(' ')).simplified();
    if (command.isEmpty())
        return failUsage(QStringLiteral("No command."));
    return askSimulator(static_cast<quint16>(*port), command);
}
