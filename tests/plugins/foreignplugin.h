#pragma once

#include <QObject>

/// A Qt plug-in of another program.
class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.other.Interface/2.0")
};
