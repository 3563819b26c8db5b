#pragma once

#include "faulttable.h"

#include <QByteArrayList>
#include <QMap>
#include <QStringList>
#include <QVector>

/// What a cycle can be seen to have done.
struct CycleResult
{
    /// Of the items First (D7), Second (D100), Bit (D201.3) and Last (D1000), in this order.
    QStringList values;
    QStringList errors;
    QString deviceError;
    QStringList log;
    /// What the controller saw, and its words afterwards.
    QByteArrayList commands;
    QMap<QByteArray, int> words;
    int newConnections = 0;

    /// All of it, a line for each.
    QStringList text() const;
    /// Whether a cycle without a fault could have done the same, but for its connection.
    bool isGood(bool isWrite) const;
};

/// What the items are before each cycle: "old" for a read, the value to be written for a write.
const QStringList &valuesBefore(bool isWrite);

/// The controller's words before each cycle.
const QMap<QByteArray, int> &wordsBefore();

/// What the plug-in makes of a fault, derived from what the fault does (faulttable.h) and from
/// three rules:
///
/// - One command, one receive: what has arrived is the answer, whatever it is.
/// - A failed wait and a failed send close the connection, a failed receive does not. What is
///   closed is opened by the next cycle.
/// - The first command to a connection that the controller has closed is sent and meets the end of
///   the connection; it also makes the controller's system reset it.
class FaultModel
{
public:
    FaultModel(const FaultEffect &effect, FaultMoment moment, bool isWrite, int timeoutMs);

    /// The next cycle, with the fault in it or not.
    CycleResult cycle(bool isFaulty);

    /// What ends the fault: nobody listens, or somebody does again.
    void setListening(bool listening) { m_listening = listening; }

private:
    enum class Line { Lost, Open, Stalled, Closed, ClosedAndUsed, Reset, ResetAndSeen };

    bool connect();
    void serve(int item);
    QString exchange(const QByteArray &command, int item, QByteArray *answer);
    QByteArray controllersAnswer(const QByteArray &command);
    QByteArray properAnswer(const QByteArray &command);

    const FaultEffect &m_effect;
    const bool m_isWrite;
    const int m_struckCommand;
    const int m_timeoutMs;

    bool m_listening = true;
    Line m_line = Line::Lost;
    /// What has arrived and was not asked for.
    QByteArray m_waiting;
    QByteArray m_previousAnswer;

    // Of the present cycle.
    CycleResult *m_result = nullptr;
    bool m_isFaulty = false;
};

/// All that is seen of one fault at one moment.
struct FaultCourse
{
    /// A cycle without a fault; none where the first connection is struck.
    QVector<CycleResult> before;
    CycleResult struck;
    /// While nobody listens, until the plug-in has noticed.
    QVector<CycleResult> away;
    /// From the end of the fault to the first good cycle, or so many that the last two are alike.
    QVector<CycleResult> after;
    /// The number of the good one, counted from 1; 0: none will come.
    int goodCycle = 0;
};

FaultCourse courseOf(const FaultEffect &effect, FaultMoment moment, bool isWrite, int timeoutMs);
