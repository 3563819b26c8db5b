#pragma once

#include <vel/interfaceid.h>

#include <QObject>

/// Needs a symbol that no library has, as a plug-in does whose library is missing on the machine.
class UnresolvedPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)

public:
    static int missingNumber();
};
