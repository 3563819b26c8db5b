#include "discover/discoveroutput.h"

#include <common/table.h>

#include <common/json/json.h>

#include <QHostAddress>
#include <QJsonArray>
#include <QJsonObject>

namespace {

QString modelText(const Identity &identity)
{
    if (identity.text.startsWith(u'E'))
        return u"not told, refused with " + identity.text;
    const QString name = modelName(identity.text);
    return name.isEmpty() ? QString(u"model code " + identity.text) : name;
}

QString controllerJson(const Finding &finding)
{
    const QString name = modelName(finding.identity.text);
    const QStringList protocols = finding.protocols().toLower().split(QStringLiteral(", "));
    return jsonLine("controller", {{"address", QHostAddress(finding.address).toString()},
                                   {"port", finding.port},
                                   {"protocols", QJsonArray::fromStringList(protocols)},
                                   {"model", name.isEmpty() ? QJsonValue() : QJsonValue(name)},
                                   {"answer", finding.identity.text}});
}

} // namespace

QString controllersText(OutputFormat format, const Findings &findings)
{
    QString lines;
    QList<QStringList> rows{{QStringLiteral("Address"), QStringLiteral("Port"),
                             QStringLiteral("Protocol"), QStringLiteral("Model")}};
    for (const Finding &finding : findings.all()) {
        if (!finding.isController())
            continue;
        lines += controllerJson(finding);
        rows.append({QHostAddress(finding.address).toString(), QString::number(finding.port),
                     finding.protocols(), modelText(finding.identity)});
    }
    if (format == OutputFormat::Json)
        return lines;
    return rows.size() > 1 ? tableText(rows) : QString();
}

QStringList nonControllerTexts(const Findings &findings)
{
    QStringList places;
    for (const Finding &finding : findings.all()) {
        if (finding.isController())
            places.append(finding.place());
    }
    QStringList texts;
    for (const Finding &finding : findings.all()) {
        if (finding.identity.text == simulatorControl || places.contains(finding.place()))
            continue;
        const QString answer = finding.identity.text.isEmpty()
                                   ? QStringLiteral("nothing")
                                   : QString(u'"' + finding.identity.text + u'"');
        texts.append(QStringLiteral("%1 (%2) is no controller: it answered %3")
                         .arg(finding.place(), finding.protocols(), answer));
    }
    return texts;
}

QString searchText(const SearchPlan &plan)
{
    return QStringLiteral("asking %1 addresses by UDP at %2 ports, then %3 by TCP at %4, for at "
                          "most %5 ms")
        .arg(QString::number(addressCount(plan.area.udp)), QString::number(plan.udpPorts.size()),
             QString::number(addressCount(plan.area.tcp)), QString::number(plan.tcpPorts.size()),
             QString::number(plan.timeoutMs));
}

QString progressText(const Search &search)
{
    return QStringLiteral("%1 of %2 asked by TCP, %3 controllers found")
        .arg(search.tcp().asked)
        .arg(search.tcp().count())
        .arg(search.findings().controllerCount());
}

QByteArray plantJson(const SearchArea &area, const Findings &findings)
{
    QStringList devices;
    QStringList names;
    for (const Finding &finding : findings.all()) {
        // Different answers by TCP and UDP are two findings, but one device.
        if (!finding.isController() || names.contains(finding.place()))
            continue;
        names.append(finding.place());
        const QJsonObject parameters{{QStringLiteral("port"), QString::number(finding.port)}};
        devices.append(jsonObject({{"id", names.size()},
                                   {"name", finding.place()},
                                   {"ip", QHostAddress(finding.address).toString()},
                                   {"parameters", parameters},
                                   {"items", QJsonArray()}}));
    }
    const QString interfaces = jsonText(QJsonArray::fromStringList(area.interfaces));
    const QString text = u"{\n  \"networkInterfaces\": " + interfaces + u",\n  \"devices\": [\n    "
                         + devices.join(QStringLiteral(",\n    ")) + u"\n  ]\n}\n";
    return text.toUtf8();
}
