#pragma once

#include <vel/interfaceid.h>

#include <QObject>

/// Needs a library that lies in a folder of its own, in which the loader does not look by itself.
class NeedingPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)

public:
    static int neededNumber();
};
