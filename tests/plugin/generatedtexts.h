#pragma once

#include <QString>
#include <QVector>

#include <random>

/// Texts put together from pieces at random; the same ones in every run and on every machine.
class GeneratedTexts
{
public:
    explicit GeneratedTexts(QVector<QString> pieces) : m_pieces(std::move(pieces)) {}

    /// A number from 0 to below the limit.
    int number(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    const QString &piece() { return m_pieces.at(number(m_pieces.size())); }

    /// As many pieces, none to `most`, one behind the other.
    QString pieces(int most)
    {
        QString result;
        for (int count = number(most + 1); count > 0; --count)
            result += piece();
        return result;
    }

    /// The text with a piece put in anywhere, in one of so many cases.
    QString spoiled(QString text, int cases)
    {
        if (number(cases) == 0)
            text.insert(number(text.size() + 1), piece());
        return text;
    }

private:
    std::mt19937 m_random{1};
    const QVector<QString> m_pieces;
};

/// What texts in a record may hold beside the letters and digits that belong there.
inline const QVector<QString> strangeTexts = {
    QStringLiteral("\n"),
    QStringLiteral("\r"),
    QStringLiteral(" "),
    QStringLiteral("+"),
    QStringLiteral("-"),
    QStringLiteral("."),
    QStringLiteral("x"),
    QStringLiteral("0x"),
    QString(QChar(u'\0')),
    QStringLiteral("\u0661"),
    QStringLiteral("\uFF11"),
    QStringLiteral("\u2212"),
    QStringLiteral("\u00A0"),
    QStringLiteral("\u00E9"),
    QStringLiteral("\uFB00"),
    QStringLiteral("\U0001D7CF"),
    QString(QChar(0xD800)),
    QString(QChar(0xDC00)),
    QStringLiteral("00000000000000000000"),
};

/// Digits around the limits of the types.
inline const QVector<QString> numbers = {
    QStringLiteral("0"),          QStringLiteral("1"),
    QStringLiteral("9"),          QStringLiteral("15"),
    QStringLiteral("16"),         QStringLiteral("007"),
    QStringLiteral("200"),        QStringLiteral("32767"),
    QStringLiteral("32768"),      QStringLiteral("65535"),
    QStringLiteral("65536"),      QStringLiteral("2147483647"),
    QStringLiteral("2147483648"), QStringLiteral("4294967295"),
    QStringLiteral("4294967296"), QStringLiteral("99999999999999999999"),
};
