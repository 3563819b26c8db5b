#pragma once

#include <vel/velinterface.h>

#include <QObject>

/// Says that everything is done, but never registers and never asks for its devices.
class SilentPlugin : public QObject, public VELInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VELInterface_iid)
    Q_INTERFACES(VELInterface)

public:
    bool init() override { return true; }
    bool readData(LogList *) override { return true; }
    bool getEventData(LogList *) override { return true; }
    bool logCallback(LogList *) override { return true; }
    bool writeData(LogList *) override { return true; }
    bool stopPlugin() override { return true; }
};
