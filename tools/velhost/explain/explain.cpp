#include "explain/explain.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <optional>

namespace {

/// The part of a text from the first to the last piece of a template.
struct Span
{
    int begin = 0;
    int end = 0;
};

struct Match
{
    KnownError error;
    Span span;
    /// The text has the whole text of a log or an item, not the short error text alone.
    bool isWhole = false;
};

bool isWordCharacter(const QString &text, int position)
{
    return position >= 0 && position < text.size() && text.at(position).isLetterOrNumber();
}

/// The parts of a template between its placeholders.
struct Pieces
{
    QStringList texts;
    /// The first piece must not follow a letter or a digit, the last one must not be followed by
    /// one.
    bool beginsWithWord = false;
    bool endsWithWord = false;
};

/// In lower case. Blanks at the ends are removed: they are often lost when a text is copied.
Pieces piecesOf(const QString &textTemplate)
{
    static const QRegularExpression placeholder(QStringLiteral("\\{[a-z]+\\}"));
    const QString text = textTemplate.trimmed().toLower();
    return {text.split(placeholder, Qt::SkipEmptyParts), isWordCharacter(text, 0),
            isWordCharacter(text, text.size() - 1)};
}

/// Finds the pieces in their order. The first match of each piece is sufficient, because any text
/// may stand between them.
std::optional<Span> findPieces(const QString &text, const Pieces &pieces)
{
    int begin = -1;
    int end = 0;
    for (int i = 0; i < pieces.texts.size(); ++i) {
        const QString &piece = pieces.texts.at(i);
        const bool isFirst = i == 0 && pieces.beginsWithWord;
        const bool isLast = i == pieces.texts.size() - 1 && pieces.endsWithWord;
        int at = text.indexOf(piece, end);
        while (at >= 0
               && ((isFirst && isWordCharacter(text, at - 1))
                   || (isLast && isWordCharacter(text, at + piece.size()))))
            at = text.indexOf(piece, at + 1);
        if (at < 0)
            return {};
        begin = i == 0 ? at : begin;
        end = at + piece.size();
    }
    return begin < 0 ? std::nullopt : std::optional(Span{begin, end});
}

std::optional<Match> matchOf(const KnownError &error, const QString &text)
{
    for (const KnownError::Place &place : error.places) {
        if (place.text == error.text)
            continue;
        if (const auto span = findPieces(text, piecesOf(place.text)))
            return Match{error, *span, true};
    }
    if (error.aliases.contains(text.trimmed().toUpper()))
        return Match{error, {0, text.size()}, false};
    if (const auto span = findPieces(text, piecesOf(error.text)))
        return Match{error, *span, false};
    return {};
}

/// A whole text ranks above a short one, and a short one above a text that is never reported.
int rank(const Match &match)
{
    if (match.isWhole)
        return 2;
    return match.error.places.isEmpty() ? 0 : 1;
}

/// Whether the other match contains this one and is longer.
bool isPartOf(const Match &match, const Match &other)
{
    const bool isInside = other.span.begin <= match.span.begin && match.span.end <= other.span.end;
    return isInside && other.span.end - other.span.begin > match.span.end - match.span.begin;
}

/// Every sequence of three characters.
QSet<QString> trigrams(const QString &text)
{
    QSet<QString> result;
    for (int i = 0; i + 3 <= text.size(); ++i)
        result.insert(text.mid(i, 3));
    return result;
}

/// From 0 to 1: the part of the smaller set that is in the other set, too.
double similarity(const QSet<QString> &one, const QSet<QString> &other)
{
    const int smaller = std::min(one.size(), other.size());
    return smaller == 0 ? 0.0 : static_cast<double>((QSet<QString>(one) & other).size()) / smaller;
}

} // namespace

QList<KnownError> explanations(const QString &text, const QList<KnownError> &catalogue)
{
    const QString lowerCase = text.toLower();
    QList<Match> matches;
    for (const KnownError &error : catalogue) {
        if (const auto match = matchOf(error, lowerCase))
            matches.append(*match);
    }
    const auto isWorse = [&matches](const Match &match) {
        return std::any_of(matches.begin(), matches.end(), [&match](const Match &other) {
            return rank(match) < rank(other) || isPartOf(match, other);
        });
    };
    QList<Match> kept;
    std::remove_copy_if(matches.begin(), matches.end(), std::back_inserter(kept), isWorse);
    std::stable_sort(kept.begin(), kept.end(), [](const Match &one, const Match &other) {
        return one.span.begin < other.span.begin;
    });
    QList<KnownError> result;
    for (const Match &match : std::as_const(kept))
        result.append(match.error);
    return result;
}

QStringList nearestTexts(const QString &text, const QList<KnownError> &catalogue)
{
    constexpr int longest = 300;
    constexpr int most = 3;
    constexpr double least = 0.4;
    const QSet<QString> wanted = trigrams(text.right(longest).toLower());
    QList<QPair<double, QString>> candidates;
    for (const KnownError &error : catalogue) {
        const double value
            = similarity(trigrams(piecesOf(error.text).texts.join(QString())), wanted);
        const QPair<double, QString> candidate(value, error.text);
        if (value >= least && !candidates.contains(candidate))
            candidates.append(candidate);
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const auto &one, const auto &other) { return one.first > other.first; });
    QStringList result;
    for (const auto &candidate : std::as_const(candidates))
        result.append(candidate.second);
    return result.mid(0, most);
}
