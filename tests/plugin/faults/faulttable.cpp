#include "faulttable.h"

#include <algorithm>

namespace {

using Bytes = QByteArray;

const QByteArray lineEnd = QByteArrayLiteral("\r\n");

Bytes textOf(const Bytes &answer)
{
    return answer.left(answer.size() - lineEnd.size());
}

Bytes whole(const Bytes &answer, const Bytes &)
{
    return answer;
}

Bytes nothing(const Bytes &, const Bytes &)
{
    return {};
}

Bytes refusal(const Bytes &, const Bytes &)
{
    return "E0\r\n";
}

// The last byte is always in the rest.
template<int Count>
Bytes first(const Bytes &answer, const Bytes &)
{
    return answer.left(std::min(Count, answer.size() - 1));
}

Bytes half(const Bytes &answer, const Bytes &)
{
    return answer.left(answer.size() / 2);
}

Bytes withoutLineEnd(const Bytes &answer, const Bytes &)
{
    return textOf(answer);
}

Bytes lineEndAlone(const Bytes &, const Bytes &)
{
    return lineEnd;
}

// The bytes are random, but no number and no refusal.
Bytes noNumber(const Bytes &, const Bytes &)
{
    return "*****\r\n";
}

Bytes zeroByteInTheMiddle(const Bytes &answer, const Bytes &)
{
    Bytes bytes = answer;
    bytes[textOf(answer).size() / 2] = '\0';
    return bytes;
}

Bytes repeatedTo20Bytes(const Bytes &answer, const Bytes &)
{
    const Bytes part = textOf(answer) + ' ';
    return part.repeated(7).left(18) + lineEnd;
}

Bytes andAWord(const Bytes &answer, const Bytes &)
{
    return textOf(answer) + " 65535" + lineEnd;
}

Bytes twice(const Bytes &answer, const Bytes &)
{
    return answer + answer;
}

Bytes theOneBefore(const Bytes &, const Bytes &previous)
{
    return previous;
}

struct MomentRow
{
    const char *name;
    // Of a read cycle and of a write cycle.
    std::array<int, 2> command;
    std::array<const char *, 2> selector;
};

const MomentRow &rowOf(FaultMoment moment)
{
    static constexpr std::array<MomentRow, moments.size()> rows{{
        {"connect", {-1, -1}, {"", ""}},
        {"first item", {0, 0}, {"@DM7@nth=1", "@DM7@nth=1"}},
        {"middle item", {1, 1}, {"@DM100@nth=1", "@DM100@nth=1"}},
        {"read before a bit write", {-1, 2}, {"", "@DM201@nth=1"}},
        {"bit write", {-1, 3}, {"", "@DM201@nth=2"}},
        {"last item", {3, 4}, {"@DM1000@nth=1", "@DM1000@nth=1"}},
    }};
    return rows.at(static_cast<std::size_t>(moment));
}

} // namespace

// The times of ten minutes are beyond every time-out.
const std::vector<FaultEffect> &faultEffects()
{
    static const std::vector<FaultEffect> effects{
        {"delay=20", "the answer comes later, but in time", whole, Then::GoesOn},
        {"delay=600000", "the answer comes too late", nothing, Then::Stalls},
        {"silent", "no answer", nothing, Then::Stalls},
        {"late=20", "the answer comes later, but in time, and others overtake it", whole,
         Then::GoesOn},
        {"late=600000", "the answer comes too late, and others overtake it", nothing, Then::Stalls},
        {"refuse=E0", "a refusal", refusal, Then::GoesOn, false},
        {"split=4,300", "the answer in two pieces, the rest in time", first<4>, Then::SendsRest},
        {"split=4,600000", "the answer in two pieces, the rest too late", first<4>, Then::Stalls},
        {"dribble=600000", "the answer byte by byte, all but the first too late", first<1>,
         Then::Stalls},
        {"no-terminator", "the answer without its line end", withoutLineEnd, Then::GoesOn},
        {"empty", "a line end alone", lineEndAlone, Then::GoesOn},
        {"garbage=20", "random bytes", noNumber, Then::GoesOn},
        {"nul", "a zero byte in the middle of the answer", zeroByteInTheMiddle, Then::GoesOn},
        {"long=20", "the answer several times in one line", repeatedTo20Bytes, Then::GoesOn},
        {"short-answer", "a word is missing", lineEndAlone, Then::GoesOn},
        {"extra-word", "a word too many", andAWord, Then::GoesOn},
        {"not-a-number", "no digits", noNumber, Then::GoesOn},
        {"duplicate", "the answer twice at once", twice, Then::GoesOn},
        {"previous-answer", "the answer to the command before", theOneBefore, Then::GoesOn},
        {"close=before", "the connection is closed instead of the answer", nothing, Then::IsClosed},
        {"close=in", "the same, behind half the answer", half, Then::IsClosed},
        {"close=after", "the same, behind the whole answer", whole, Then::IsClosed},
        {"reset=before", "the connection is reset instead of the answer", nothing, Then::IsReset},
        {"reset=in", "the same, behind half the answer", half, Then::IsReset},
        {"reset=after", "the same, behind the whole answer", whole, Then::IsReset},
        {"restart=600000", "the controller restarts", nothing, Then::IsGone, false},
        {"refuse-connect", "the controller resets the new connection", nullptr, Then::IsReset},
        {"accept-then-silent", "the controller takes the connection and is silent", nullptr,
         Then::Stalls},
        {"max-clients=0", "the controller has no room for another client", nullptr, Then::IsReset},
    };
    return effects;
}

const char *nameOf(FaultMoment moment)
{
    return rowOf(moment).name;
}

int struckCommand(FaultMoment moment, bool isWrite)
{
    return rowOf(moment).command.at(isWrite ? 1 : 0);
}

const char *selectorOf(FaultMoment moment, bool isWrite)
{
    return rowOf(moment).selector.at(isWrite ? 1 : 0);
}

QString whyNot(const FaultEffect &effect, FaultMoment moment, bool isWrite)
{
    const bool strikesClients = effect.arrives == nullptr;
    if (moment == FaultMoment::Connecting) {
        // A restart can be another client's.
        const bool canStrike = strikesClients || effect.then == Then::IsGone;
        return canStrike ? QString() : QStringLiteral("no command is sent while connecting");
    }
    if (strikesClients)
        return QStringLiteral("strikes new clients, and a cycle has one connection");
    if (struckCommand(moment, isWrite) < 0)
        return QStringLiteral("a read cycle writes no bit");
    return {};
}
