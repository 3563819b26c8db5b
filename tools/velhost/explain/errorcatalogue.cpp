#include "explain/errorcatalogue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QSet>

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

namespace {

QStringList texts(const QJsonValue &list)
{
    return list.toVariant().toStringList();
}

/// The parts of a template between its placeholders. Blanks at its ends do not count: they are
/// often lost when a text is copied.
QStringList partsOf(const QString &textTemplate)
{
    static const QRegularExpression placeholder(QStringLiteral("\\{[a-z]+\\}"));
    return textTemplate.trimmed().split(placeholder, Qt::SkipEmptyParts);
}

/// Finds the parts of a template in their order. Any text may stand between them, so the first
/// place of each is sufficient: no other is tried, and the time is linear in the length of the
/// text.
QRegularExpression expressionOf(const QString &textTemplate)
{
    QStringList parts = partsOf(textTemplate);
    if (parts.isEmpty())
        return QRegularExpression(QStringLiteral("(?!)"));
    for (QString &part : parts)
        part = QRegularExpression::escape(part);
    const QString noWordGoesOn = QStringLiteral("(?!(?<=[\\pL\\pN])[\\pL\\pN])");
    return QRegularExpression(
        u"(?>" + noWordGoesOn + parts.join(u")(*COMMIT)(?>.*?") + noWordGoesOn + u')',
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
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

struct Match
{
    KnownError error;
    int begin = 0;
    int end = 0;
    /// The whole text of a log or an item ranks above a short one, and a short one above a text
    /// that is never reported.
    int rank = 0;
};

std::optional<Match> matchOf(const KnownError &error, const QString &text)
{
    for (const KnownError::Place &place : error.places) {
        if (place.text == error.text)
            continue;
        if (const auto match = place.expression.match(text); match.hasMatch())
            return Match{error, match.capturedStart(), match.capturedEnd(), 2};
    }
    const int rank = error.places.isEmpty() ? 0 : 1;
    if (error.aliases.contains(text.trimmed().toUpper()))
        return Match{error, 0, text.size(), rank};
    if (const auto match = error.expression.match(text); match.hasMatch())
        return Match{error, match.capturedStart(), match.capturedEnd(), rank};
    return {};
}

/// Whether the other match contains this one and is longer.
bool isPartOf(const Match &match, const Match &other)
{
    const bool isInside = other.begin <= match.begin && match.end <= other.end;
    return isInside && other.end - other.begin > match.end - match.begin;
}

/// Every sequence of three characters.
QSet<QString> trigrams(const QString &text)
{
    QSet<QString> result;
    for (int i = 0; i + 3 <= text.size(); ++i)
        result.insert(text.mid(i, 3));
    return result;
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

QList<KnownError> explanations(const QString &text, const QList<KnownError> &catalogue)
{
    QList<Match> matches;
    for (const KnownError &error : catalogue) {
        if (const auto match = matchOf(error, text))
            matches.append(*match);
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match &one, const Match &other) { return one.begin < other.begin; });
    QList<KnownError> result;
    for (const Match &match : std::as_const(matches)) {
        const auto isBetter = [&match](const Match &other) {
            return match.rank < other.rank || isPartOf(match, other);
        };
        if (std::none_of(matches.cbegin(), matches.cend(), isBetter))
            result.append(match.error);
    }
    return result;
}

QStringList nearestTexts(const QString &text, const QList<KnownError> &catalogue)
{
    constexpr int longest = 300;
    constexpr int most = 3;
    constexpr double least = 0.4;
    const QSet<QString> wanted = trigrams(text.right(longest).toLower());
    std::multimap<double, QString, std::greater<>> candidates;
    for (const KnownError &error : catalogue) {
        const QString fixed = partsOf(error.text).join(QString()).toLower();
        QSet<QString> common = trigrams(fixed);
        const int smaller = std::min(common.size(), wanted.size());
        // The part of the smaller set that is in the other one, too.
        const double similarity = common.intersect(wanted).size() / std::max<double>(smaller, 1);
        if (similarity >= least)
            candidates.emplace(similarity, error.text);
    }
    QStringList result;
    for (const auto &candidate : candidates)
        result.append(candidate.second);
    result.removeDuplicates();
    return result.mid(0, most);
}
