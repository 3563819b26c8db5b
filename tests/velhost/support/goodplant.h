#pragma once

#include "plantrun.h"
#include "text.h"

#include <QJsonDocument>
#include <QJsonObject>

/// A plant with one device and one item.
inline QByteArray goodPlant()
{
    return R"({"$schema": "s", "networkInterfaces": ["eth0"], "devices": [{"id": 1, "name": "Press",)"
           R"( "ip": "10.0.0.1", "parameters": {"port": "8501", "timeout": "2000", "udp_ports": null},)"
           R"( "items": [{"name": "A", "parameters": {"memory_address": "D1", "memory_type": "1",)"
           R"( "data_type": "Short"}}]}]})";
}

inline QJsonObject objectIn(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

/// What `velhost check` says of the plant.
inline ProgramRun check(const QByteArray &plant)
{
    return runWithPlant(
        text(VELHOST_FILE),
        {text("check"), text("plant.json"), text("--plugin"), text(KEYENCE_PLUGIN_FILE)}, plant);
}
