#include "faultmodel.h"

#include <utility>

namespace {

struct Item
{
    const char *name;
    const char *device;
    const char *newValue;
};

constexpr std::array<Item, 4> items{{
    {"First", "D7", "1"},
    {"Second", "D100", "2"},
    {"Bit", "D201", "0"},
    {"Last", "D1000", "3"},
}};
constexpr int bitItem = 2;

// The bytes up to a zero byte, without the line end, as a number; 0 when they are none.
int wordIn(const QByteArray &answer)
{
    QByteArray text(answer.constData());
    while (text.endsWith('\r') || text.endsWith('\n'))
        text.chop(1);
    bool isNumber = false;
    const int number = text.toUShort(&isNumber);
    return isNumber ? number : 0;
}

QString plain(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes);
}

} // namespace

QStringList CycleResult::text() const
{
    QStringList lines;
    for (int i = 0; i < values.size(); ++i)
        lines.append(QStringLiteral("item %1: '%2', error '%3'")
                         .arg(QString::number(i), values.at(i), errors.at(i)));
    lines.append(QStringLiteral("device: ") + deviceError);
    for (const QString &entry : log)
        lines.append(QStringLiteral("log: ") + entry);
    for (const QByteArray &command : commands)
        lines.append(QStringLiteral("command: ") + plain(command));
    for (auto word = words.begin(); word != words.end(); ++word)
        lines.append(plain(word.key()) + QStringLiteral(" = ") + QString::number(word.value()));
    lines.append(QStringLiteral("new connections: ") + QString::number(newConnections));
    return lines;
}

bool CycleResult::isGood(bool isWrite) const
{
    static const QMap<QByteArray, int> written{{"D7", 1}, {"D100", 2}, {"D201", 193}, {"D1000", 3}};
    static const QStringList read{QStringLiteral("7"), QStringLiteral("100"), QStringLiteral("1"),
                                  QStringLiteral("1000")};
    if (!log.isEmpty())
        return false;
    return isWrite ? words == written : values == read;
}

const QStringList &valuesBefore(bool isWrite)
{
    const auto all = [](bool write) {
        QStringList values;
        for (const Item &item : items)
            values.append(QString::fromLatin1(write ? item.newValue : "old"));
        return values;
    };
    static const std::array<QStringList, 2> values{all(false), all(true)};
    return values.at(isWrite ? 1 : 0);
}

const QMap<QByteArray, int> &wordsBefore()
{
    static const QMap<QByteArray, int> words{
        {"D7", 7}, {"D100", 100}, {"D201", 201}, {"D1000", 1000}};
    return words;
}

FaultModel::FaultModel(const FaultEffect &effect, FaultMoment moment, bool isWrite, int timeoutMs)
    : m_effect(effect), m_isWrite(isWrite), m_struckCommand(struckCommand(moment, isWrite)),
      m_timeoutMs(timeoutMs)
{
}

CycleResult FaultModel::cycle(bool isFaulty)
{
    CycleResult result;
    m_result = &result;
    m_isFaulty = isFaulty;
    result.values = valuesBefore(m_isWrite);
    result.errors = QStringList{{}, {}, {}, {}};
    result.words = wordsBefore();
    if (m_line != Line::Lost || connect()) {
        for (int item = 0; item < static_cast<int>(items.size()); ++item)
            serve(item);
    }
    return result;
}

bool FaultModel::connect()
{
    if (!m_listening) {
        m_result->deviceError = QStringLiteral("Not connected to PLC");
        m_result->log.append(m_result->deviceError);
        return false;
    }
    m_result->newConnections = 1;
    m_waiting.clear();
    m_previousAnswer.clear();
    m_line = Line::Open;
    if (m_isFaulty && m_struckCommand < 0)
        m_line = m_effect.then == Then::IsReset ? Line::Reset : Line::Stalled;
    return true;
}

void FaultModel::serve(int item)
{
    const Item &served = items.at(static_cast<std::size_t>(item));
    const QByteArray device = served.device;
    QByteArray answer;
    QString error;
    if (!m_isWrite) {
        error = exchange("RD " + device, item, &answer);
        const int word = wordIn(answer);
        if (error.isEmpty())
            m_result->values[item] = QString::number(item == bitItem ? (word >> 3) & 1 : word);
        m_result->errors[item] = error;
    } else if (item == bitItem) {
        error = exchange("RD " + device, item, &answer);
        if (error.isEmpty())
            error = exchange("WR " + device + ' ' + QByteArray::number(wordIn(answer) & ~8), item,
                             &answer);
    } else {
        error = exchange("WR " + device + " 000" + served.newValue, item, &answer);
    }
    if (!error.isEmpty())
        m_result->log.append(error);
}

// Returns the error, or nothing.
QString FaultModel::exchange(const QByteArray &command, int item, QByteArray *answer)
{
    const QString source = QString::fromLatin1(items.at(static_cast<std::size_t>(item)).name);
    const auto failed = [&](const char *what, const QString &reason) {
        return QStringLiteral("[%1\r ] socket %2 data error from <%3> :%4")
            .arg(plain(command), QString::fromLatin1(what), source, reason);
    };
    switch (m_line) {
    case Line::Lost:
        return failed("write", QStringLiteral("Bad file descriptor"));
    case Line::Reset:
        m_line = Line::Lost;
        return failed("write", QStringLiteral("Connection reset by peer"));
    case Line::ClosedAndUsed:
    case Line::ResetAndSeen:
        m_line = Line::Lost;
        return failed("write", QStringLiteral("Broken pipe"));
    case Line::Closed:
        m_line = Line::ClosedAndUsed;
        return failed("read", QStringLiteral("No data received - Success"));
    case Line::Stalled:
    case Line::Open:
        break;
    }

    *answer = std::exchange(m_waiting, {});
    const QByteArray arrived = controllersAnswer(command);
    (answer->isEmpty() ? *answer : m_waiting) = arrived;
    if (!answer->isEmpty())
        return answer->startsWith('E')
                   ? QStringLiteral("[%1\r] <%2> :invalid address").arg(plain(command), source)
                   : QString();

    if (m_line == Line::Closed)
        return failed("read", QStringLiteral("No data received - Success"));
    if (m_line == Line::Reset) {
        m_line = Line::ResetAndSeen;
        return failed("read", QStringLiteral("No data received - Connection reset by peer"));
    }
    m_line = Line::Lost;
    return failed("read", QStringLiteral("Timeout reading (%1ms)").arg(m_timeoutMs));
}

// What arrives in time. The rest of a cut answer waits for the next command.
QByteArray FaultModel::controllersAnswer(const QByteArray &command)
{
    if (m_line == Line::Stalled)
        return {};
    const bool struck = m_isFaulty && m_result->commands.size() == m_struckCommand;
    m_result->commands.append(command);
    const QByteArray proper = struck && !m_effect.executed ? QByteArray() : properAnswer(command);
    const QByteArray previous = std::exchange(m_previousAnswer, proper);
    if (!struck)
        return proper;

    const QByteArray arrives = m_effect.arrives(proper, previous);
    switch (m_effect.then) {
    case Then::GoesOn:
        break;
    case Then::Stalls:
        m_line = Line::Stalled;
        break;
    case Then::SendsRest:
        m_waiting = proper.mid(arrives.size());
        break;
    case Then::IsGone:
        m_listening = false;
        m_line = Line::Closed;
        break;
    case Then::IsClosed:
        m_line = Line::Closed;
        break;
    case Then::IsReset:
        m_line = Line::Reset;
        break;
    }
    return arrives;
}

QByteArray FaultModel::properAnswer(const QByteArray &command)
{
    const QByteArrayList fields = command.split(' ');
    int &word = m_result->words[fields.at(1)];
    if (fields.at(0) == "RD")
        return QByteArray::number(word).rightJustified(5, '0') + "\r\n";
    word = fields.at(2).toInt();
    return "OK\r\n";
}

FaultCourse courseOf(const FaultEffect &effect, FaultMoment moment, bool isWrite, int timeoutMs)
{
    FaultModel model(effect, moment, isWrite, timeoutMs);
    FaultCourse course;
    if (moment != FaultMoment::Connecting)
        course.before.append(model.cycle(false));
    else
        model.setListening(effect.then != Then::IsGone);
    course.struck = model.cycle(true);
    const auto noticed = [&course] {
        const CycleResult &last = course.away.isEmpty() ? course.struck : course.away.constLast();
        return !last.deviceError.isEmpty();
    };
    while (effect.then == Then::IsGone && !noticed())
        course.away.append(model.cycle(false));

    model.setListening(true);
    constexpr int enough = 4;
    do {
        course.after.append(model.cycle(false));
        if (course.after.constLast().isGood(isWrite))
            course.goodCycle = course.after.size();
    } while (course.goodCycle == 0 && course.after.size() < enough);
    return course;
}
