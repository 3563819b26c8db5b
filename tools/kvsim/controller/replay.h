#pragma once

#include "controller/reply.h"

#include <QHash>
#include <QVector>

struct Line;

/// What a controller did when it was recorded. For one thread.
struct Replay
{
    /// What came of one command, each time that it was sent.
    struct Answers
    {
        QVector<QList<Action>> recorded;
        int next = 0;
    };

    QHash<QByteArray, Answers> answers;
    /// Commands that were never recorded.
    quint64 unknown = 0;
};

/// What came of the same command the next time; behind the last time follows the first one again. A
/// command that was never recorded is refused and counted.
Reply replayed(const Line &line, Replay *replay);
