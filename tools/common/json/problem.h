#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Something that is wrong with a file.
struct Problem
{
    /// The line and the column of the file, LINE:COLUMN, where there is no place to tell.
    QString position;
    /// The way to the value, for example "devices[0].ip"; empty for the file as a whole.
    QString place;
    /// What is wrong and, where that does not say it, what to write instead.
    QString text;
};

/// The problems as lines of text, each beginning with the file and the place in it.
QStringList problemLines(const QString &fileName, const QList<Problem> &problems);

/// The problems as one JSON object a line.
QString problemsJson(const QString &fileName, const QList<Problem> &problems);
