#include <common/textwidth.h>

#include <QStringList>
#include <QVector>

#include <algorithm>
#include <utility>

#include <clocale>
#include <cwchar>

namespace {

constexpr int lineWidth = 79;

/// Uses the width table of the C library, which needs a UTF-8 locale. The output is UTF-8 in every
/// locale of the user.
int characterWidth(uint character)
{
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (utf8 == nullptr)
        return 1;
    const locale_t before = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(character));
    uselocale(before);
    return width < 0 ? 1 : width;
}

} // namespace

int textWidth(const QString &text)
{
    int width = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        width += characterWidth(character);
    return width;
}

QString cutToWidth(const QString &text, int width)
{
    if (textWidth(text) <= width)
        return text;
    if (width <= 0)
        return {};
    QString result;
    int used = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        used += characterWidth(character);
        if (used > width - 1)
            break;
        result += QString::fromUcs4(&character, 1);
    }
    return result + u'…';
}

QString paddedToWidth(const QString &text, int width)
{
    return text + QString(std::max(width - textWidth(text), 0), u' ');
}

QString wrappedText(const QString &text, const QString &indent)
{
    QStringList words = text.split(u' ');
    QStringList lines{indent + words.takeFirst()};
    for (const QString &word : std::as_const(words)) {
        if (lines.last().size() + 1 + word.size() > lineWidth)
            lines.append(indent + word);
        else
            lines.last() += u' ' + word;
    }
    return lines.join(u'\n') + u'\n';
}
