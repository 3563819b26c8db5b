#include "explain/errorcatalogue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

namespace {

QStringList texts(const QJsonValue &list)
{
    return list.toVariant().toStringList();
}

/// Finds the parts of a template between its placeholders, in their order. Any text may stand
/// between them, so the first place of each is sufficient: no other is tried, and the time is
/// linear in the length of the text. Blanks at the ends of the template do not count: they are
/// often lost when a text is copied.
QRegularExpression expressionOf(const QString &textTemplate)
{
    static const QRegularExpression placeholder(QStringLiteral("\\{[a-z]+\\}"));
    QStringList parts = textTemplate.trimmed().split(placeholder, Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return QRegularExpression(QStringLiteral("(?!)"));
    for (QString &part : parts)
        part = QRegularExpression::escape(part);
    const QString noWordGoesOn = QStringLiteral("(?!(?<=\\w)\\w)");
    return QRegularExpression(
        u"(?>" + noWordGoesOn + parts.join(u")(*COMMIT)(?>.*?") + noWordGoesOn + u')',
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption
            | QRegularExpression::UseUnicodePropertiesOption);
}

QList<KnownError::Place> placesOf(const QJsonValue &form, const QString &reason)
{
    QList<KnownError::Place> places;
    const QJsonArray array = form.toArray();
    for (const QJsonValue &place : array) {
        QString text = place[u"text"].toString();
        text.replace(QStringLiteral("{reason}"), reason);
        places.append({place[u"place"].toString(), text, expressionOf(text)});
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
        errors.append({error[u"id"].toString(), text, expressionOf(text),
                       error[u"title"].toString(), placesOf(form, text),
                       error[u"unreported"].toString(), error[u"meaning"].toString(),
                       texts(error[u"causes"]), texts(error[u"remedies"]), texts(error[u"aliases"]),
                       texts(error[u"follows"])});
    }
    return errors;
}
