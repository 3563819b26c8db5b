#include "network/trace.h"

#include "controller/controller.h"

#include <QDateTime>

#include <array>
#include <cstdio>
#include <ctime>

namespace {

void appendEscaped(char byte, QByteArray *text)
{
    switch (byte) {
    case '\r':
        *text += "\\r";
        return;
    case '\n':
        *text += "\\n";
        return;
    case '\\':
        *text += "\\\\";
        return;
    default:
        break;
    }
    if (byte >= ' ' && byte <= '~')
        *text += byte;
    else
        *text += "\\x" + QByteArray(1, byte).toHex();
}

/// As QDateTime::toString(Qt::ISODateWithMs) writes a local time, in a fraction of its time.
QByteArray timeText(const QDateTime &time)
{
    const QDate day = time.date();
    const QTime clock = time.time();
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03d", day.year(),
                  day.month(), day.day(), clock.hour(), clock.minute(), clock.second(),
                  clock.msec());
    return text.data();
}

} // namespace

QByteArray escaped(const QByteArray &bytes)
{
    QByteArray text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        appendEscaped(byte, &text);
    return text;
}

QDateTime localTime()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto seconds = static_cast<std::time_t>(now / 1000);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return QDateTime::fromMSecsSinceEpoch(now + qint64(local.tm_gmtoff) * 1000, Qt::UTC);
}

QByteArray traceLine(const QDateTime &time, const QByteArray &client, ClientEvent event,
                     const QByteArray &bytes)
{
    return timeText(time) + ' ' + client + ' ' + static_cast<char>(event) + ' ' + escaped(bytes)
           + '\n';
}
