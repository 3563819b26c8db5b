#include <common/json/jsonplace.h>

#include <QHash>
#include <QMap>

#include <cmath>

namespace {

QString kindOf(const QJsonValue &value)
{
    static const QMap<QJsonValue::Type, QString> kinds{
        {QJsonValue::Null, QStringLiteral("null")},
        {QJsonValue::Bool, QStringLiteral("true or false")},
        {QJsonValue::Double, QStringLiteral("a number")},
        {QJsonValue::String, QStringLiteral("a text")},
        {QJsonValue::Array, QStringLiteral("a list")},
        {QJsonValue::Object, QStringLiteral("an object")}};
    return kinds.value(value.type(), QStringLiteral("nothing"));
}

} // namespace

QString member(const QString &place, const QString &key)
{
    return place.isEmpty() ? key : QString(place + u'.' + key);
}

QString element(const QString &place, int index)
{
    return place + u'[' + QString::number(index) + u']';
}

void addError(const QString &place, const QString &text, QList<Problem> *errors)
{
    errors->append({{}, place, text});
}

void addWarning(const QString &place, const QString &text, QList<Problem> *problems)
{
    problems->append({{}, place, text, true});
}

void addWrongKind(const QJsonValue &found, const QString &expected, const QString &place,
                  QList<Problem> *errors)
{
    const QString text = found.isUndefined()
                             ? QStringLiteral("missing; expected %1").arg(expected)
                             : QStringLiteral("expected %1, found %2").arg(expected, kindOf(found));
    addError(place, text, errors);
}

QString readText(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isString())
        addWrongKind(value, QStringLiteral("a text"), place, errors);
    return value.toString();
}

QString readName(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    QString name = readText(value, place, errors);
    if (value.isString() && name.isEmpty())
        addError(place, QStringLiteral("must not be empty; write a name"), errors);
    return name;
}

std::optional<qint64> readWhole(const QJsonValue &value, qint64 minimum, qint64 maximum,
                                const QString &place, QList<Problem> *errors)
{
    const double number = value.toDouble();
    if (!value.isDouble())
        addWrongKind(value, QStringLiteral("a number"), place, errors);
    else if (number < static_cast<double>(minimum) || number > static_cast<double>(maximum)
             || std::floor(number) != number)
        addError(place,
                 QStringLiteral("expected a whole number from %1 to %2").arg(minimum).arg(maximum),
                 errors);
    else
        return static_cast<qint64>(number);
    return {};
}

QJsonArray readList(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isArray())
        addWrongKind(value, QStringLiteral("a list"), place, errors);
    return value.toArray();
}

QJsonObject readObject(const QJsonValue &value, const QString &place, QList<Problem> *errors)
{
    if (!value.isObject())
        addWrongKind(value, QStringLiteral("an object"), place, errors);
    return value.toObject();
}

void checkKeys(const QJsonObject &object, const QStringList &known, const QString &place,
               QList<Problem> *errors)
{
    const QStringList keys = object.keys();
    for (const QString &key : keys) {
        if (!known.contains(key))
            addError(
                member(place, key),
                QStringLiteral("unknown key; known here: %1").arg(known.join(QStringLiteral(", "))),
                errors);
    }
}

void checkUnique(const QStringList &texts, const QString &key, const QString &place,
                 QList<Problem> *errors)
{
    QHash<QString, int> firstIndex;
    for (int i = 0; i < texts.size(); ++i) {
        const QString &text = texts.at(i);
        const int first = firstIndex.value(text, i);
        firstIndex.insert(text, first);
        if (first != i && !text.isEmpty())
            addError(member(element(place, i), key),
                     QStringLiteral("\"%1\" is already the %2 of %3; write another one")
                         .arg(text, key, element(place, first)),
                     errors);
    }
}
