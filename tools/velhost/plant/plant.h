#pragma once

#include <common/json/problem.h>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/// Parameters as they stand in the plant file, by column name: the text given, or nothing where the
/// file says `null` so that the record goes without.
using ParameterTexts = QMap<QString, std::optional<QString>>;

/// One item of a device.
struct PlantItem
{
    /// Not empty and unique within the device.
    QString name;
    ParameterTexts parameters;
    /// The value that the item should have; nothing when none is known.
    std::optional<QString> expect = {};
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
};

/// What a plant file describes.
struct Plant
{
    QStringList networkInterfaces;
    QList<PlantDevice> devices;
};

/// Reads a plant from JSON. When anything is wrong with it, returns nothing and adds one line to
/// `errors` for each fault, beginning with `fileName` and the place in it. Whether the plug-in has
/// the parameters is not judged here.
std::optional<Plant> parsePlant(const QByteArray &json, const QString &fileName,
                                QStringList *errors);

/// Reads a plant file of at most 16 MiB as far as it can be understood: what has a fault, whose
/// problem is then in `problems`, is empty. Returns nothing when the file cannot be read or is no
/// JSON; `problems` has that reason alone.
std::optional<Plant> readPlantDraft(const QString &fileName, QList<Problem> *problems);

/// Reads a plant file of at most 16 MiB; errors as with parsePlant().
std::optional<Plant> readPlantFile(const QString &fileName, QStringList *errors);
