#include "discover/portlist.h"

#include <common/wholenumber.h>

#include <QRegularExpression>

namespace {

constexpr int maximumPorts = 64;

/// Adds the ports of one part of the list, one more than the maximum at most. Returns what is wrong
/// with the part; empty when it is right.
QString appendPart(const QString &part, QVector<quint16> *ports)
{
    static const QRegularExpression range(QStringLiteral("\\A *([0-9]+) *(?:- *([0-9]+) *)?\\z"));
    const QRegularExpressionMatch match = range.match(part);
    if (!match.hasMatch())
        return QStringLiteral("\"%1\" is no port and no range; write numbers from 1 to 65535 with "
                              "commas between, for example 8501,8600-8605")
            .arg(part);
    const std::optional<int> first = wholeNumber(match.captured(1), 1, 65535);
    const std::optional<int> last
        = match.captured(2).isEmpty() ? first : wholeNumber(match.captured(2), 1, 65535);
    if (!first || !last)
        return QStringLiteral("\"%1\" is out of range; ports are 1 to 65535").arg(part);
    if (*last < *first)
        return QStringLiteral("\"%1\" ends before it begins; write %2-%3")
            .arg(part, QString::number(*last), QString::number(*first));
    for (int port = *first; port <= *last && ports->size() <= maximumPorts; ++port) {
        if (!ports->contains(static_cast<quint16>(port)))
            ports->append(static_cast<quint16>(port));
    }
    return {};
}

} // namespace

QVector<quint16> parsePortList(const QString &text, const QString &option, QStringList *errors,
                               QStringList *notes)
{
    QVector<quint16> ports;
    const QStringList parts = text.split(u',');
    for (const QString &part : parts) {
        const QString error = appendPart(part, &ports);
        if (!error.isEmpty()) {
            errors->append(option + u": " + error);
            return {};
        }
    }
    if (ports.size() > maximumPorts) {
        ports.resize(maximumPorts);
        notes->append(
            QStringLiteral("%1: \"%2\" names more than %3 ports; only the first %3 are "
                           "asked, up to %4")
                .arg(option, text, QString::number(maximumPorts), QString::number(ports.last())));
    }
    return ports;
}
