#pragma once

#include "explain/errorcatalogue.h"
#include "host/outputformat.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

/// Counts the error texts in the lines of a log. Each line with a text of the catalogue counts, and
/// each log error and message of velhost; of its JSON only log errors do. Memory does not grow with
/// the number of lines.
class LogDigest
{
public:
    explicit LogDigest(QList<KnownError> catalogue) : m_catalogue(std::move(catalogue)) {}

    void add(const QString &line);

    /// Whether no line counted.
    bool isEmpty() const { return m_entries.isEmpty(); }

    /// The texts in the order in which they first came, each consequence behind its cause.
    QString text(OutputFormat format) const;

private:
    struct Entry
    {
        /// Without an id for a text that is not of the catalogue.
        KnownError error;
        /// The id of the error whose consequence it was.
        QString cause;
        qint64 count = 0;
        /// The times of the first and the last line as they stand there.
        QString first;
        QString last;
    };

    QList<KnownError> m_catalogue;
    QList<Entry> m_entries;
    qint64 m_otherLines = 0;
    /// The entries of velhost that came without a count.
    QSet<QString> m_begun;
    /// The latest error of each device that was no consequence. A log does not always name devices.
    QHash<QString, QString> m_causes;
};
