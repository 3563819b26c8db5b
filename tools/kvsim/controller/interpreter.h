#pragma once

#include "memory/devicetable.h"

#include <QVector>

class Memory;
struct Line;

/// What makes a controller differ from the one of the device table.
struct Profile
{
    /// The answer to "?K"; 55 is a KV-7500.
    QByteArray model = "55";
    /// Clients cannot write these, as they cannot write read-only devices.
    QVector<Range> readOnly;
    /// For clients these do not exist.
    QVector<Range> missing;
};

/// What a controller with such a memory answers to one command, ended by CR LF. A command that is
/// refused changes nothing.
QByteArray answerTo(const Line &line, const Profile &profile, Memory *memory);
