#include "explain/errorcatalogue.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QStringList texts(const QJsonValue &list)
{
    QStringList result;
    const QJsonArray array = list.toArray();
    for (const QJsonValue &text : array)
        result.append(text.toString());
    return result;
}

QList<KnownError::Place> placesOf(const QJsonObject &form, const QString &reason)
{
    QList<KnownError::Place> places;
    const QJsonArray array = form.value(u"places").toArray();
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
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    QHash<QString, QJsonObject> forms;
    const QJsonArray formArray = root.value(u"forms").toArray();
    for (const QJsonValue &form : formArray)
        forms.insert(form[u"id"].toString(), form.toObject());

    QList<KnownError> errors;
    const QJsonArray errorArray = root.value(u"errors").toArray();
    for (const QJsonValue &error : errorArray) {
        const QString text = error[u"text"].toString();
        errors.append({error[u"id"].toString(), text, error[u"title"].toString(),
                       placesOf(forms.value(error[u"form"].toString()), text),
                       error[u"unreported"].toString(), error[u"meaning"].toString(),
                       texts(error[u"causes"]), texts(error[u"remedies"]), texts(error[u"aliases"]),
                       texts(error[u"follows"])});
    }
    return errors;
}
