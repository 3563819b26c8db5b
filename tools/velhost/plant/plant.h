#pragma once

#include <common/json/problem.h>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/// Parameters of the plant file by column name: the text, or nothing for `null`, which leaves the
/// parameter out of the record.
using ParameterTexts = QMap<QString, std::optional<QString>>;

/// One item of a device.
struct PlantItem
{
    /// Not empty and unique within the device.
    QString name;
    ParameterTexts parameters;
    /// The expected value of the item; nothing when the file has none.
    std::optional<QString> expect = {};
    /// Where it stands in the plant file, for messages.
    QString place = {};
    /// How far a number may be from `expect`.
    double tolerance = 0;
};

/// One device.
struct PlantDevice
{
    /// 0 or more, unique.
    int id = 0;
    /// Not empty and unique.
    QString name;
    QString ip;
    ParameterTexts parameters;
    QList<PlantItem> items;
    /// The parameters of every item that does not have its own.
    ParameterTexts itemDefaults = {};
    /// Where it stands in the plant file, for messages.
    QString place = {};
};

/// The content of a plant file.
struct Plant
{
    QStringList networkInterfaces;
    QList<PlantDevice> devices;
};

/// Reads a plant from JSON, even one with errors: adds them to `problems` and leaves the wrong
/// parts empty. `${NAME}` in the address or the port of a device is that environment variable.
/// Returns nothing when the text is no JSON. The parameters are not compared with the plug-in's
/// columns here.
std::optional<Plant> parsePlantDraft(const QByteArray &json, QList<Problem> *problems);

/// Reads such a file of at most 16 MiB. Returns nothing also when it cannot be read.
std::optional<Plant> readPlantDraft(const QString &fileName, QList<Problem> *problems);
