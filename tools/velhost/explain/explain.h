#pragma once

#include "explain/errorcatalogue.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The errors that the text is about, best match first. The text may contain the short text of an
/// error or the text of an item or a log, or be an answer of a controller such as "E0". Case is
/// ignored. The time is linear in the length of the text.
QList<KnownError> explanations(const QString &text, const QList<KnownError> &catalogue);

/// At most three texts of the catalogue that are similar to the text, the most similar first. Of a
/// long text only the end is compared.
QStringList nearestTexts(const QString &text, const QList<KnownError> &catalogue);
