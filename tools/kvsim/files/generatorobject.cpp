#include "files/generatorobject.h"

#include "files/valuesfile.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr qint64 longestPeriod = 86400000; // a day

/// The members of one generator in a file. A wrong member is an error and counts as 1, so that the
/// other members are checked, too.
struct GeneratorFields
{
    JsonNode node;
    DeviceKind kind;
    QString folder;

    qint64 number(const char *key, qint64 minimum, qint64 maximum) const
    {
        return node[key].whole(minimum, maximum).value_or(1);
    }

    qint64 time(const char *key) const { return number(key, 1, longestPeriod); }

    /// A value that the word or bit can hold.
    qint64 level(const char *key) const { return number(key, lowest(), highest()); }

    qint64 lowest() const { return kind == DeviceKind::Bit ? 0 : -32768; }
    qint64 highest() const { return maximumValue(kind); }

    bool isOnce() const
    {
        const JsonNode once = node["once"];
        if (once.exists() && !once.value.isBool())
            once.failAs(QStringLiteral("true or false"));
        return once.value.toBool();
    }
};

Generator readRamp(const GeneratorFields &fields)
{
    const qint64 from = fields.level("from");
    const qint64 to = fields.level("to");
    return ramp(from, to, fields.time("period"));
}

Generator readSine(const GeneratorFields &fields)
{
    constexpr qint64 widest = 65535;
    const qint64 mean = fields.level("mean");
    const qint64 amplitude = fields.number("amplitude", 0, widest);
    return sine(mean, amplitude, fields.time("period"));
}

Generator readSquare(const GeneratorFields &fields)
{
    const qint64 low = fields.level("low");
    const qint64 high = fields.level("high");
    return square(low, high, fields.time("period"));
}

Generator readRandom(const GeneratorFields &fields)
{
    constexpr qint64 largestSeed = std::numeric_limits<quint32>::max();
    const qint64 minimum = fields.level("min");
    const qint64 maximum = fields.level("max");
    if (maximum < minimum)
        fields.node["max"].fail(QStringLiteral("is less than min; write min first"));
    const qint64 seed = fields.node["seed"].exists() ? fields.number("seed", 0, largestSeed) : 1;
    return randomNumbers(minimum, std::max(minimum, maximum), fields.time("period"),
                         static_cast<quint32>(seed));
}

Generator readSteps(const GeneratorFields &fields)
{
    const JsonNode node = fields.node["values"];
    const QList<JsonNode> list = node.elements();
    QVector<qint64> values;
    for (const JsonNode &value : list)
        values.append(value.whole(fields.lowest(), fields.highest()).value_or(1));
    if (values.isEmpty())
        node.fail(QStringLiteral("must have one value at least"));
    const qint64 hold = fields.time("hold");
    QVector<qint64> times;
    for (int i = 0; i < values.size(); ++i)
        times.append(i * hold);
    return replay({times, values}, fields.isOnce());
}

Generator readCsv(const GeneratorFields &fields)
{
    const JsonNode file = fields.node["file"];
    const QString fileName = file.name();
    const bool once = fields.isOnce();
    const qint64 period = fields.node["period"].exists() ? fields.time("period") : 0;
    if (fileName.isEmpty())
        return {};
    QStringList errors;
    const Timeline timeline = readValuesFile(QDir(fields.folder).filePath(fileName),
                                             fields.lowest(), fields.highest(), period, &errors);
    for (const QString &error : qAsConst(errors))
        file.fail(error);
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

Generator readGenerator(const JsonNode &node, DeviceKind kind, const QString &folder)
{
    if (!node.expectObject())
        return {};
    const JsonNode kindNode = node["kind"];
    const int before = node.errors->size();
    const QString name = kindNode.name();
    if (node.errors->size() > before)
        return {};
    const auto *known
        = std::find_if(generatorKinds.cbegin(), generatorKinds.cend(),
                       [&](const GeneratorKind &k) { return name == QLatin1String(k.name); });
    if (known == generatorKinds.cend()) {
        kindNode.fail(unknownKind(name));
        return {};
    }
    node.checkKeys(known->keys);
    return known->read({node, kind, folder});
}
