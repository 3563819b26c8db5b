#include "discover/portlist.h"

#include <QRegularExpression>

namespace {

constexpr int maximumPorts = 64;

/// The port; 0 when the number is larger than 65535.
int portNumber(const QString &digits)
{
    bool isNumber = false;
    const int number = digits.toInt(&isNumber);
    return isNumber && number <= 65535 ? number : 0;
}

void appendRange(int first, int last, PortList *list)
{
    for (int port = first; port <= last && !list->isTruncated; ++port) {
        if (list->ports.contains(static_cast<quint16>(port)))
            continue;
        if (list->ports.size() == maximumPorts)
            list->isTruncated = true;
        else
            list->ports.append(static_cast<quint16>(port));
    }
}

} // namespace

std::optional<PortList> parsePortList(const QString &text, QString *error)
{
    static const QRegularExpression range(QStringLiteral("\\A *([0-9]+) *(?:- *([0-9]+) *)?\\z"));
    PortList list;
    const QStringList parts = text.split(u',');
    for (const QString &part : parts) {
        const QRegularExpressionMatch match = range.match(part);
        if (!match.hasMatch()) {
            *error = QStringLiteral("\"%1\" is no port and no range; write numbers from 1 to 65535 "
                                    "with commas between, for example 8501,8600-8605")
                         .arg(part);
            return {};
        }
        const int first = portNumber(match.captured(1));
        const int last = match.captured(2).isEmpty() ? first : portNumber(match.captured(2));
        if (first == 0 || last == 0) {
            *error = QStringLiteral("\"%1\" is out of range; ports are 1 to 65535").arg(part);
            return {};
        }
        if (last < first) {
            *error = QStringLiteral("\"%1\" ends before it begins; write %2-%3")
                         .arg(part)
                         .arg(last)
                         .arg(first);
            return {};
        }
        appendRange(first, last, &list);
    }
    return list;
}
