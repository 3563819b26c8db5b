// A wire trace that is replayed, and as the same file a plant that is played.

#include "input.h"
#include "require.h"
#include "writefile.h"

#include <controller/linebuffer.h>
#include <files/plantfile.h>
#include <files/replayfile.h>

#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

namespace {

const QString &file()
{
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("file"));
    return path;
}

void checkErrors(const QStringList &errors)
{
    for (const QString &error : errors)
        require(error.startsWith(file() + u':') && error.size() > file().size() + 2,
                "an error names its file and says something");
}

// Twice: behind the last answer follows the first one again.
void checkAnswers(const QByteArray &command, Replay *replay)
{
    const QVector<QList<Action>> recorded = replay->answers.value(command).recorded;
    require(!recorded.isEmpty(), "a command was sent once at least");
    for (int i = 0; i < 2 * recorded.size(); ++i) {
        const QList<Action> actions = replayed({command}, replay).actions;
        requireSame(actions.size(), recorded.at(i % recorded.size()).size(),
                    "each answer comes in its turn");
        for (const Action &action : actions)
            require(action.milliseconds >= 0 && action.kind != Action::Kind::Restart,
                    "an answer is one that a peer can give");
    }
}

void checkReplay(bool withDelays)
{
    QList<Problem> problems;
    const Controllers controllers = readReplay(file(), withDelays, &problems);
    checkErrors(problemLines(file(), problems));
    require(hasError(problems) || !controllers.isEmpty(), "a trace without errors has a peer");
    for (const auto &controller : controllers) {
        Replay *replay = &*controller->replay;
        const QList<QByteArray> commands = replay->answers.keys();
        for (const QByteArray &command : commands)
            checkAnswers(command, replay);
        requireSame<quint64>(replay->unknown, 0, "what was recorded is known");
    }
}

// Whatever the time is, what an item moves can be read.
void checkItem(const QJsonObject &parameters, Memory *memory)
{
    const QString text = parameters.value(QStringLiteral("memory_address")).toString();
    const int end = text.indexOf(QRegularExpression(QStringLiteral("[.-]")));
    const std::optional<Address> address = parseAddress(text.left(end).toUtf8());
    // What is not there stands in "itemDefaults".
    if (!address)
        return;
    require(memory->isGenerated(*address), "an item moves its first word");
    for (const qint64 elapsed : {0LL, 999LL, 86400000LL, 1000000000001LL}) {
        memory->setClock([=] { return elapsed; });
        memory->values({*address, std::min(1000U, countToEnd(*address))});
    }
}

void checkPlant()
{
    QJsonObject plant;
    QList<Problem> problems;
    const Controllers controllers = readPlant(file(), true, &plant, &problems);
    checkErrors(problemLines(file(), problems));
    require(!problems.isEmpty() || !controllers.isEmpty(), "a plant without errors has a device");
    if (!problems.isEmpty())
        return;
    const QJsonArray devices = plant.value(QStringLiteral("devices")).toArray();
    for (int i = 0; i < controllers.size(); ++i) {
        const QJsonArray items = devices.at(i).toObject().value(QStringLiteral("items")).toArray();
        for (const QJsonValue &item : items)
            checkItem(item.toObject().value(QStringLiteral("parameters")).toObject(),
                      &controllers.at(i)->memory);
    }
}

} // namespace

void check(Input input)
{
    require(writeFile(file(), input.rest()), "the file can be written");
    checkReplay(true);
    checkReplay(false);
    checkPlant();
}
