#include "network/trace.h"

#include "controller/controller.h"

#include <QDateTime>

#include <array>
#include <ctime>

namespace {

/// The local time to the millisecond. QDateTime::currentDateTime() looks at the file of the time
/// zone, several times a call.
QByteArray timeText()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto seconds = static_cast<std::time_t>(now / 1000);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &local);
    return text.data() + QByteArray::number(now % 1000).rightJustified(3, '0');
}

} // namespace

QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        if (byte == '\r')
            text += "\\r";
        else if (byte == '\n')
            text += "\\n";
        else if (byte == '\\')
            text += "\\\\";
        else if (byte >= ' ' && byte <= '~')
            text += byte;
        else
            text += "\\x" + QByteArray(1, byte).toHex();
    }
    return text;
}

QByteArray traceLine(const QByteArray &client, ClientEvent event, const QByteArray &bytes)
{
    return timeText() + ' ' + client + ' ' + static_cast<char>(event) + ' ' + escaped(bytes) + '\n';
}
