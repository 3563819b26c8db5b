#pragma once

#include "programrun.h"

#include <QFile>
#include <QTemporaryDir>

/// Runs the program in a new folder that holds `plant` as "plant.json".
inline ProgramRun runWithPlant(const QString &program, const QStringList &arguments,
                               const QByteArray &plant)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("plant.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(plant) != plant.size())
        return {-1, {}, file.errorString()};
    file.close();
    return runProgram(program, arguments, folder.path());
}
