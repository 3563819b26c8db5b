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
