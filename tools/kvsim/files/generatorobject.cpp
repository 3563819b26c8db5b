#include "files/generatorobject.h"

#include "files/valuesfile.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr qint64 longestPeriod = 86400000; // a day

/// The members of one generator in a file. A wrong member adds a problem and counts as 1, so that
/// the other members are checked, too.
struct GeneratorFields
{
    QJsonObject object;
    DeviceKind kind;
    QString folder;
    QString place;
    QList<Problem> *errors;

    qint64 number(const QString &key, qint64 minimum, qint64 maximum) const
    {
        return readWhole(object.value(key), minimum, maximum, member(place, key), errors)
            .value_or(1);
    }

    qint64 time(const QString &key) const { return number(key, 1, longestPeriod); }

    /// A value that the word or bit can hold.
    qint64 level(const QString &key) const { return number(key, lowest(), highest()); }

    qint64 lowest() const { return kind == DeviceKind::Bit ? 0 : -32768; }
    qint64 highest() const { return maximumValue(kind); }

    bool has(const QString &key) const { return object.contains(key); }

    bool isOnce() const
    {
        const QString name = QStringLiteral("once");
        const QJsonValue value = object.value(name);
        if (has(name) && !value.isBool())
            addWrongKind(value, QStringLiteral("true or false"), member(place, name), errors);
        return value.toBool();
    }

    QVector<qint64> levels(const QString &key) const
    {
        const QString listPlace = member(place, key);
        const QJsonArray list = readList(object.value(key), listPlace, errors);
        QVector<qint64> values;
        for (int i = 0; i < list.size(); ++i)
            values.append(readWhole(list.at(i), lowest(), highest(), element(listPlace, i), errors)
                              .value_or(1));
        if (values.isEmpty())
            addProblem(key, QStringLiteral("must have one value at least"));
        return values;
    }

    void addProblem(const QString &key, const QString &text) const
    {
        addError(member(place, key), text, errors);
    }
};

Generator readRamp(const GeneratorFields &fields)
{
    const qint64 from = fields.level(QStringLiteral("from"));
    const qint64 to = fields.level(QStringLiteral("to"));
    return ramp(from, to, fields.time(QStringLiteral("period")));
}

Generator readSine(const GeneratorFields &fields)
{
    constexpr qint64 widest = 65535;
    const qint64 mean = fields.level(QStringLiteral("mean"));
    const qint64 amplitude = fields.number(QStringLiteral("amplitude"), 0, widest);
    return sine(mean, amplitude, fields.time(QStringLiteral("period")));
}

Generator readSquare(const GeneratorFields &fields)
{
    const qint64 low = fields.level(QStringLiteral("low"));
    const qint64 high = fields.level(QStringLiteral("high"));
    return square(low, high, fields.time(QStringLiteral("period")));
}

Generator readRandom(const GeneratorFields &fields)
{
    constexpr qint64 largestSeed = std::numeric_limits<quint32>::max();
    const qint64 minimum = fields.level(QStringLiteral("min"));
    const qint64 maximum = fields.level(QStringLiteral("max"));
    if (maximum < minimum)
        fields.addProblem(QStringLiteral("max"),
                          QStringLiteral("is less than min; write min first"));
    const qint64 seed = fields.has(QStringLiteral("seed"))
                            ? fields.number(QStringLiteral("seed"), 0, largestSeed)
                            : 1;
    return randomNumbers(minimum, std::max(minimum, maximum), fields.time(QStringLiteral("period")),
                         static_cast<quint32>(seed));
}

Generator readSteps(const GeneratorFields &fields)
{
    Timeline timeline{{}, fields.levels(QStringLiteral("values"))};
    const qint64 hold = fields.time(QStringLiteral("hold"));
    for (int i = 0; i < timeline.values.size(); ++i)
        timeline.times.append(i * hold);
    return replay(timeline, fields.isOnce());
}

Generator readCsv(const GeneratorFields &fields)
{
    const QString key = QStringLiteral("file");
    const QString fileName
        = readName(fields.object.value(key), member(fields.place, key), fields.errors);
    const bool once = fields.isOnce();
    const qint64 period
        = fields.has(QStringLiteral("period")) ? fields.time(QStringLiteral("period")) : 0;
    if (fileName.isEmpty())
        return {};
    QStringList errors;
    const Timeline timeline = readValuesFile(QDir(fields.folder).filePath(fileName),
                                             fields.lowest(), fields.highest(), period, &errors);
    for (const QString &error : qAsConst(errors))
        fields.addProblem(key, error);
    return replay(timeline, once);
}

struct GeneratorKind
{
    const char *name;
    /// All keys that it may have, with blanks between.
    const char *keys;
    Generator (*read)(const GeneratorFields &fields);
};

constexpr std::array<GeneratorKind, 6> generatorKinds{{
    {"ramp", "kind from to period", readRamp},
    {"sine", "kind mean amplitude period", readSine},
    {"square", "kind low high period", readSquare},
    {"random", "kind min max period seed", readRandom},
    {"steps", "kind values hold once", readSteps},
    {"csv", "kind file period once", readCsv},
}};

QString unknownKind(const QString &name)
{
    QStringList names;
    for (const GeneratorKind &kind : generatorKinds)
        names.append(QLatin1String(kind.name));
    return QStringLiteral("unknown kind '%1'; use one of: %2")
        .arg(name, names.join(QStringLiteral(", ")));
}

} // namespace

Generator readGenerator(const QJsonValue &value, DeviceKind kind, const QString &folder,
                        const QString &place, QList<Problem> *errors)
{
    const QJsonObject object = readObject(value, place, errors);
    if (!value.isObject())
        return {};
    const QString key = QStringLiteral("kind");
    const int before = errors->size();
    const QString name = readName(object.value(key), member(place, key), errors);
    if (errors->size() > before)
        return {};
    const auto *known
        = std::find_if(generatorKinds.cbegin(), generatorKinds.cend(),
                       [&](const GeneratorKind &k) { return name == QLatin1String(k.name); });
    if (known == generatorKinds.cend()) {
        addError(member(place, key), unknownKind(name), errors);
        return {};
    }
    checkKeys(object, QString::fromLatin1(known->keys).split(u' '), place, errors);
    return known->read({object, kind, folder, place, errors});
}
