#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// One error text of the plug-in. In texts, what varies stands as a name in braces.
struct KnownError
{
    /// A place where the text is seen, and the whole of what is seen there.
    struct Place
    {
        QString name;
        QString text;
    };

    /// Unique; the anchor in docs/errors.md.
    QString id;
    QString text;
    /// What has happened, in a few words.
    QString title;
    /// Empty for a text that the plug-in reports nowhere.
    QList<Place> places;
    /// Why it is reported nowhere.
    QString unreported;
    QString meaning;
    QStringList causes;
    QStringList remedies;
    /// The controller's answers that end in this error.
    QStringList aliases;
};

/// The error texts that errors.json describes, in its order.
QList<KnownError> errorCatalogue(const QByteArray &json);
