#pragma once

#include <QByteArray>
#include <QChar>
#include <QString>

#include <utility>

/// One input of a fuzz target, taken apart from its start. Fields are separated by the byte 1F,
/// ASCII's own "unit separator", which none of the fields needs.
class Input
{
public:
    explicit Input(QByteArray bytes) : m_rest(std::move(bytes)) {}

    bool atEnd() const { return m_rest.isEmpty(); }

    /// All that is left, with its separators.
    QByteArray rest() const { return m_rest; }

    /// A number from 0 to below `limit`, which is one byte: the digits are 0 to 9, ':' is 10.
    int choice(int limit)
    {
        const auto byte = static_cast<unsigned char>(m_rest.isEmpty() ? '0' : m_rest.at(0));
        m_rest.remove(0, 1);
        return (byte + 256 - '0') % 256 % limit;
    }

    /// The bytes of the next field; the last one ends with the input, and behind it all are empty.
    QByteArray field()
    {
        const int end = m_rest.indexOf(separator);
        if (end < 0)
            return std::exchange(m_rest, {});
        const QByteArray result = m_rest.left(end);
        m_rest.remove(0, end + 1);
        return result;
    }

    /// The next field as text. What is no UTF-8 becomes a lone surrogate, so that there is text
    /// that is no valid UTF-16, too; zero bytes stay.
    QString text()
    {
        const QByteArray bytes = field();
        return QString::fromUtf8(bytes.constData(), bytes.size())
            .replace(QChar::ReplacementCharacter, QChar(0xD800));
    }

private:
    static constexpr char separator = '\x1F';

    QByteArray m_rest;
};

/// What a target checks of one input; each target defines it.
void check(Input input);
