#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

/// The options of a registration. Only the host knows what the fields mean, so a field that the
/// plug-in sets is named after its type and its number, and one that it does not set `unused`.
struct PluginInitOptions
{
    int unused1 = 24;
    bool flag2 = false;
    bool flag3 = false;
    bool unused4 = true;
    int unused5 = 180;
    bool flag6 = false;
    bool flag7 = false;
    bool unused8 = false;
    bool unused9 = false;
    QString text10 = QStringLiteral("discover");
    QMap<QString, QVariant> unused11;
};
