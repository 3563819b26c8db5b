#pragma once

#include "programrun.h"
#include "writefile.h"

#include <QTemporaryDir>

/// Runs the program in a new folder that holds `plant` as "plant.json".
inline ProgramRun runWithPlant(const QString &program, const QStringList &arguments,
                               const QByteArray &plant)
{
    const QTemporaryDir folder;
    if (!writeFile(folder.filePath(QStringLiteral("plant.json")), plant))
        return {-1, {}, QStringLiteral("plant.json cannot be written")};
    return runProgram(program, arguments, folder.path());
}
