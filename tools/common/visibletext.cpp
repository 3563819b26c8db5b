#include <common/visibletext.h>

#include <QMap>
#include <QVector>

namespace {

// The character as an escape sequence, or unchanged when it is printable.
QString visibleCharacter(uint character)
{
    static const QMap<uint, QString> escapes{{'\\', QStringLiteral("\\\\")},
                                             {'\r', QStringLiteral("\\r")},
                                             {'\n', QStringLiteral("\\n")},
                                             {'\t', QStringLiteral("\\t")}};
    const auto escape = escapes.constFind(character);
    if (escape != escapes.constEnd())
        return *escape;
    const QChar::Category category = QChar::category(character);
    const bool breaksLine
        = category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
    if (QChar::isPrint(character) && !breaksLine)
        return QString::fromUcs4(&character, 1);
    if (character <= 0xff)
        return QStringLiteral("\\x%1").arg(character, 2, 16, QChar(u'0'));
    return QStringLiteral("\\u%1").arg(character, 4, 16, QChar(u'0'));
}

} // namespace

QString visible(const QString &text)
{
    QString result;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        result += visibleCharacter(character);
    if (result.endsWith(u' ')) {
        result.chop(1);
        result += u"\\x20";
    }
    return result;
}
