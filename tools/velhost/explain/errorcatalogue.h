#pragma once

#include <QByteArray>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

/// One error text of the plug-in. In the texts a name in braces stands for a part that varies.
struct KnownError
{
    /// A place where the error is seen, and the whole text there.
    struct Place
    {
        QString name;
        QString text;
        QRegularExpression expression;
    };

    /// Unique; the anchor in docs/errors.md.
    QString id;
    QString text;
    /// Finds it in another text; so does that of a place with the whole text there.
    QRegularExpression expression;
    /// What has happened, in a few words.
    QString title;
    /// Empty for a text that the plug-in reports nowhere.
    QList<Place> places;
    /// Why it is reported nowhere.
    QString unreported;
    QString meaning;
    QStringList causes;
    QStringList remedies;
    /// The answers of the controller that lead to this error.
    QStringList aliases;
    /// The errors, by `id`, whose consequence this one is when it comes after one of them.
    QStringList follows;
};

/// The error texts that errors.json describes, in its order.
QList<KnownError> errorCatalogue(const QByteArray &json);

/// The errors that the text is about, best match first. The text may contain the short text of an
/// error or the text of an item or a log, or be an answer of a controller such as "E0". Case is
/// ignored. The time is linear in the length of the text.
QList<KnownError> explanations(const QString &text, const QList<KnownError> &catalogue);

/// At most three texts of the catalogue that are similar to the text, the most similar first. Of a
/// long text only the end is compared.
QStringList nearestTexts(const QString &text, const QList<KnownError> &catalogue);
