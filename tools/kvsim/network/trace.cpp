#include "network/trace.h"

#include <QDateTime>

namespace {

QByteArray escapedByte(char byte)
{
    switch (byte) {
    case '\r':
        return "\\r";
    case '\n':
        return "\\n";
    case '\\':
        return "\\\\";
    default:
        break;
    }
    if (byte >= ' ' && byte <= '~')
        return {1, byte};
    return "\\x" + QByteArray(1, byte).toHex();
}

} // namespace

QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        text += escapedByte(byte);
    return text;
}

QByteArray traceText(const QDateTime &time, const QByteArray &client, const QByteArray &command,
                     const QByteArray &answer, const QByteArray &fault)
{
    const QByteArray prefix = time.toString(Qt::ISODateWithMs).toLatin1() + ' ' + client;
    QByteArray text = prefix + " > " + escaped(command) + '\n';
    if (!fault.isEmpty())
        text += prefix + " ! " + fault + '\n';
    if (!answer.isEmpty())
        text += prefix + " < " + escaped(answer) + '\n';
    return text;
}
