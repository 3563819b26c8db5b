#pragma once

#include "explain/errorcatalogue.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The errors that the text tells of, best first: an error's short text, the text that an item or a
/// log shows, with anything before or after it, or an answer of a controller such as "E0". Letters
/// of either case are the same. The time it takes grows with the text's length and no faster.
QList<KnownError> explanations(const QString &text, const QList<KnownError> &catalogue);

/// The catalogue's texts that resemble the text most, at most three, the nearest first; none where
/// nothing does. Of a long text only the end is looked at.
QStringList nearestTexts(const QString &text, const QList<KnownError> &catalogue);
