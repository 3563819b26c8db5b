#include "files/replayfile.h"

#include <common/json/problem.h>
#include <common/trace/trace.h>

#include <QMap>
#include <QPair>

#include <algorithm>
#include <limits>

namespace {

/// A connection, as far as it has been read.
struct Course
{
    Replay *peer;
    /// The beginning of a command whose end is still to come.
    QByteArray unended;
    QByteArray command;
    /// Which time it was that the command was sent; -1: there was no command.
    int time = -1;
    /// Since the command, or since what came of it.
    qint64 waitedUs = 0;
};

/// By the numbers of process and connection.
using Courses = QMap<QPair<qint64, qint64>, Course>;

Replay *replayOf(const QByteArray &peer, Controllers *controllers)
{
    for (const auto &controller : qAsConst(*controllers)) {
        if (controller->place.name == peer)
            return &*controller->replay;
    }
    controllers->append(std::make_shared<Controller>());
    controllers->constLast()->place.name = peer;
    return &controllers->constLast()->replay.emplace();
}

void beginCommands(const QByteArray &bytes, Course *course)
{
    course->unended += QByteArray(bytes).replace("\n", "");
    QList<QByteArray> commands = course->unended.split('\r');
    course->unended = commands.takeLast();
    for (const QByteArray &command : qAsConst(commands)) {
        QVector<QList<Action>> &recorded = course->peer->answers[command].recorded;
        course->command = command;
        course->time = recorded.size();
        recorded.append(QList<Action>());
    }
}

void take(const TraceEvent &event, bool withDelays, Courses *courses, Controllers *controllers)
{
    static const QStringList known
        = QStringLiteral("connect sent received timeout closed reset shutdown close").split(u' ');
    if (!known.contains(event.name))
        return;
    const QPair<qint64, qint64> key(event.process, event.connection);
    if (event.name == u"connect" || !courses->contains(key))
        courses->insert(key, {replayOf(event.peer.toUtf8(), controllers), {}, {}, -1, 0});
    Course &course = (*courses)[key];
    course.waitedUs += std::max<qint64>(event.waited, 0);
    if (event.name == u"timeout")
        return;
    const qint64 waited = withDelays ? (course.waitedUs + 500) / 1000 : 0;
    course.waitedUs = 0;
    if (event.name == u"sent")
        beginCommands(event.bytes, &course);
    static const QMap<QString, Action::Kind> kinds{{QStringLiteral("received"), Action::Kind::Send},
                                                   {QStringLiteral("closed"), Action::Kind::Close},
                                                   {QStringLiteral("reset"), Action::Kind::Reset}};
    // What the peer did before the first command, nobody has asked for.
    if (course.time < 0 || !kinds.contains(event.name))
        return;
    constexpr qint64 longest = std::numeric_limits<int>::max();
    course.peer->answers[course.command].recorded[course.time].append(
        {kinds.value(event.name), static_cast<int>(std::min(waited, longest)), event.bytes});
}

} // namespace

Controllers readReplay(const QString &fileName, bool withDelays, QList<Problem> *problems)
{
    Controllers controllers;
    Courses courses;
    *problems += readTrace(fileName, [&](const TraceEvent &event) {
        take(event, withDelays, &courses, &controllers);
    });
    if (controllers.isEmpty() && !hasError(*problems))
        addError({}, QStringLiteral("holds no connection"), problems);
    return controllers;
}
