// A wire trace that is replayed, and as the same file a plant that is played.

#include "input.h"
#include "require.h"
#include "writefile.h"

#include <controller/linebuffer.h>
#include <controller/replay.h>
#include <files/plantfile.h>
#include <files/replayfile.h>

#include <QTemporaryDir>

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
    const QList<Setup> setups = readReplay(file(), withDelays, &problems);
    checkErrors(problemLines(file(), problems));
    require(hasError(problems) || !setups.isEmpty(), "a trace without errors has a peer");
    for (const Setup &setup : setups) {
        const QList<QByteArray> commands = setup.replay->answers.keys();
        for (const QByteArray &command : commands)
            checkAnswers(command, setup.replay.get());
        requireSame<quint64>(setup.replay->unknown, 0, "what was recorded is known");
    }
}

void checkPlant()
{
    QJsonObject plant;
    QStringList errors;
    const QList<Setup> setups = readPlant(file(), {}, &plant, &errors);
    checkErrors(errors);
    require(!errors.isEmpty() || !setups.isEmpty(), "a plant without errors has a device");
    for (const Setup &setup : setups) {
        Memory memory;
        for (const GeneratedValue &generated : setup.generators) {
            require(!memory.isGenerated(generated.address), "one item moves a word");
            memory.generate(generated.address, generated.generator);
            for (const qint64 elapsed : {0LL, 999LL, 86400000LL, 1000000000001LL})
                require(generated.generator(elapsed) >= 0 && generated.generator(elapsed) <= 65535,
                        "a value fits its word");
        }
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
