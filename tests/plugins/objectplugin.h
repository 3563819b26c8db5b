#pragma once

#include <vel/interfaceid.h>

#include <QObject>

/// Carries the host's identifier without implementing its interface.
class ObjectPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)
};
