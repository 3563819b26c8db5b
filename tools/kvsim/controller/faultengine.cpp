#include "controller/faultengine.h"

#include "controller/faultkind.h"
#include "controller/interpreter.h"
#include "controller/linebuffer.h"
#include "memory/number.h"

#include <QMutexLocker>

#include <algorithm>

namespace {

using Role = FaultKind::Role;

/// The words or bits that a command names, whether they all exist or not.
std::optional<Range> rangeOf(const QByteArray &line)
{
    const QList<QByteArray> fields = line.simplified().split(' ');
    const std::optional<Address> first = parseAddress(fields.value(1));
    if (!first)
        return std::nullopt;
    const QByteArray count = fields.first().endsWith('S') ? fields.value(2) : QByteArray();
    return Range{*first, parseNumber(count, 10).value_or(1)};
}

bool fits(const Fault &fault, const std::optional<Range> &range)
{
    if (fault.kind->strikesClients())
        return false;
    if (!fault.address)
        return true;
    return range && overlap(*range, {*fault.address, 1});
}

} // namespace

QString FaultEngine::add(const QByteArray &text)
{
    const QMutexLocker locker(&m_mutex);
    Fault fault;
    const QString error = parseFault(text, &fault);
    if (error.isEmpty())
        m_entries.append({fault, QRandomGenerator(fault.seed), {text, 0, 0}});
    return error;
}

void FaultEngine::clear()
{
    const QMutexLocker locker(&m_mutex);
    m_entries.clear();
}

bool FaultEngine::remove(const QByteArray &text)
{
    const QMutexLocker locker(&m_mutex);
    const auto others = std::remove_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return entry.count.text == text;
    });
    const bool isFound = others != m_entries.end();
    m_entries.erase(others, m_entries.end());
    return isFound;
}

QVector<FaultCount> FaultEngine::counts() const
{
    const QMutexLocker locker(&m_mutex);
    QVector<FaultCount> counts;
    for (const Entry &entry : m_entries)
        counts.append(entry.count);
    return counts;
}

/// Counts, and draws a random number where the fault wants one. It is called for every fault that a
/// command fits, so that what one fault does depends on no other.
bool FaultEngine::strikesNow(Entry *entry)
{
    const quint64 seen = ++entry->count.seen;
    const Fault &fault = entry->fault;
    if (fault.nth != 0)
        return seen == fault.nth;
    if (fault.every != 0)
        return seen % fault.every == 0;
    return fault.percent == 100 || entry->random.bounded(100U) < fault.percent;
}

Reply FaultEngine::reply(const Line &line, const QByteArray &previous, const Profile &profile,
                         Memory *memory)
{
    const QMutexLocker locker(&m_mutex);
    const std::optional<Range> range = m_entries.isEmpty() ? std::nullopt : rangeOf(line.text);
    Entry *struck = nullptr;
    for (Entry &entry : m_entries) {
        if (!fits(entry.fault, range) || !strikesNow(&entry) || struck)
            continue;
        // Before a client's first command there is no answer that could be sent again.
        if (entry.fault.kind->role != Role::PreviousAnswer || !previous.isEmpty())
            struck = &entry;
    }

    const bool isExecuted = !struck || struck->fault.kind->role != Role::NoExecution;
    const QByteArray answer = isExecuted ? answerTo(line, profile, memory) : QByteArray();
    if (!struck)
        return {{{Action::Kind::Send, 0, answer}}, false, answer, {}};
    ++struck->count.applied;
    const Fault &fault = struck->fault;
    Reply reply{fault.kind->actions({fault, answer, previous, &struck->random}),
                fault.kind->role == Role::LateAnswer, answer, fault.text};
    if (!isExecuted)
        reply.answer = reply.bytes();
    return reply;
}

std::optional<Fault> FaultEngine::welcome(int connected)
{
    const QMutexLocker locker(&m_mutex);
    std::optional<Fault> struck;
    for (Entry &entry : m_entries) {
        const Fault &fault = entry.fault;
        if (!fault.kind->strikesClients() || !strikesNow(&entry) || struck)
            continue;
        if (connected < fault.amount)
            continue;
        ++entry.count.applied;
        struck = fault;
    }
    return struck;
}
