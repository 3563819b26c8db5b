#include "explain/errorcatalogue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

namespace {

QStringList texts(const QJsonValue &list)
{
    QStringList result;
    const QJsonArray array = list.toArray();
    for (const QJsonValue &text : array)
        result.append(text.toString());
    return result;
}

QList<KnownError::Place> placesOf(const QJsonValue &form, const QString &reason)
{
    QList<KnownError::Place> places;
    const QJsonArray array = form.toArray();
    for (const QJsonValue &place : array) {
        QString text = place[u"text"].toString();
        text.replace(QStringLiteral("{reason}"), reason);
        places.append({place[u"place"].toString(), text});
    }
    return places;
}

} // namespace

QList<KnownError> errorCatalogue(const QByteArray &json)
{
    const QJsonDocument root = QJsonDocument::fromJson(json);
    QList<KnownError> errors;
    const QJsonArray array = root[u"errors"].toArray();
    for (const QJsonValue &error : array) {
        const QString text = error[u"text"].toString();
        const QJsonValue form = root[u"forms"][error[u"form"].toString()];
        errors.append(
            {error[u"id"].toString(), text, error[u"title"].toString(), placesOf(form, text),
             error[u"unreported"].toString(), error[u"meaning"].toString(), texts(error[u"causes"]),
             texts(error[u"remedies"]), texts(error[u"aliases"]), texts(error[u"follows"])});
    }
    return errors;
}
