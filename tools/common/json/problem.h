#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One error in a file, or a warning: what works, but hardly as it is meant, or was not checked.
struct Problem
{
    /// LINE:COLUMN in the file; set when there is no place.
    QString position;
    /// The path to the value, for example "devices[0].ip"; empty for the whole file.
    QString place;
    /// What is wrong and, where that is not obvious, what to write instead.
    QString text;
    bool isWarning = false;
};

void addError(const QString &place, const QString &text, QList<Problem> *errors);
void addWarning(const QString &place, const QString &text, QList<Problem> *problems);

/// Whether one of the problems is no mere warning.
bool hasError(const QList<Problem> &problems);

/// The problems as lines of text, each beginning with the file and the place in it.
QStringList problemLines(const QString &fileName, const QList<Problem> &problems);

/// The problems as one JSON object a line, with the type "problem" or "warning".
QString problemsJson(const QString &fileName, const QList<Problem> &problems);
