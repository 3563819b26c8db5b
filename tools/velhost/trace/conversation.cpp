#include "trace/conversation.h"

#include <common/visibletext.h>

#include <QRegularExpression>

namespace {

// A controller that never ends a line must not fill the memory.
constexpr int mostOutstanding = 64;
constexpr int longestPiece = 65536;

/// The answer when every word holds its own number; null for a device without decimal words.
QByteArray selfAddressedAnswer(const QByteArray &command)
{
    static const QRegularExpression read(
        QStringLiteral("^RDS? (?:DM|EM|FM|ZF|TM|CM|VM|[DEFZ])([0-9]+)(?: ([0-9]+))?\r$"));
    const QRegularExpressionMatch match = read.match(QString::fromLatin1(command));
    if (!match.hasMatch())
        return {};
    const uint first = match.captured(1).toUInt();
    const uint count = match.captured(2).isEmpty() ? 1 : match.captured(2).toUInt();
    QByteArrayList words;
    for (uint word = first; word < first + qMin(count, 1000U); ++word)
        words.append(QByteArray::number(word % 65536).rightJustified(5, '0'));
    return words.join(' ');
}

/// The verdict on bytes of which the first ones belong to the answer to an earlier command.
Verdict withOwner(const Verdict &verdict, const QByteArray &owner)
{
    const QString command = visible(QString::fromLatin1(owner));
    if (!isSuspect(verdict) || verdict.kind == Verdict::Kind::OtherValue)
        return {Verdict::Kind::OtherValue, u"this is the answer to " + command};
    return {verdict.kind, verdict.text + u"; it begins with the answer to " + command};
}

} // namespace

Verdict Conversation::take(const TraceEvent &event, bool isSelfAddressed)
{
    if (event.name == u"sent")
        send(event.bytes);
    if (event.name == u"timeout")
        giveUp();
    return event.name == u"received" ? receive(event.bytes, isSelfAddressed) : Verdict();
}

void Conversation::send(const QByteArray &bytes)
{
    // A command may be sent in pieces.
    if (m_isAsked && !m_outstanding.isEmpty() && !m_outstanding.constLast().endsWith('\r'))
        m_outstanding.last() += bytes;
    else
        m_outstanding.append(bytes);
    if (m_outstanding.size() > mostOutstanding)
        m_outstanding.removeFirst();
    m_isAsked = true;
}

Verdict Conversation::receive(const QByteArray &bytes, bool isSelfAddressed)
{
    Verdict result = judged(bytes, isSelfAddressed);
    m_piece += bytes;
    if (m_isAsked && m_outstanding.size() > 1) {
        const QByteArray oldest = m_outstanding.constFirst();
        const QByteArray answer = m_piece.left(m_piece.indexOf('\n') + 1);
        // Where the pieces make no answer, the line end of the first one is what is missing.
        if (isSuspect(result) || verdict(oldest, answer).kind == Verdict::Kind::Fits)
            result = withOwner(result, oldest);
        else
            m_outstanding = {m_outstanding.constLast()};
    }
    for (int end = m_piece.count('\n'); end > 0 && !m_outstanding.isEmpty(); --end)
        m_outstanding.removeFirst();
    m_piece = m_piece.mid(m_piece.lastIndexOf('\n') + 1).right(longestPiece);
    m_isAsked = false;
    return result;
}

void Conversation::giveUp()
{
    m_outstanding.clear();
    m_piece.clear();
    m_isAsked = false;
}

Verdict Conversation::judged(const QByteArray &bytes, bool isSelfAddressed) const
{
    if (!m_isAsked)
        return {Verdict::Kind::SeveralLines,
                QStringLiteral("nothing was asked: the rest of an answer, or a late one")};
    const QByteArray command = m_outstanding.constLast();
    return verdict(command, bytes, isSelfAddressed ? selfAddressedAnswer(command) : QByteArray());
}
