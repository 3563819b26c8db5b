#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

/// What a plug-in asks of the host at registration. The meaning of the fields is the host's: a
/// field that the plug-in sets is named after its kind and its number, one that it leaves alone
/// `unused`.
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
