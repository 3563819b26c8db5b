#pragma once

#include "trace/verdict.h"

#include <common/trace/trace.h>

#include <QByteArrayList>

/// What goes over one connection. Each receive counts as one answer, as it does for the plug-in.
class Conversation
{
public:
    /// Takes the next event of the connection, and judges it as receive() does.
    Verdict take(const TraceEvent &event, bool isSelfAddressed);

    void send(const QByteArray &bytes);

    /// Judges what one receive has brought. `isSelfAddressed`: every word in the controller is
    /// known to hold its own number, as those of a fresh kvsim do.
    Verdict receive(const QByteArray &bytes, bool isSelfAddressed);

    /// The host no longer waits for an answer.
    void giveUp();

private:
    Verdict judged(const QByteArray &bytes, bool isSelfAddressed) const;

    /// The commands whose answers have not come to their line end, the oldest first.
    QByteArrayList m_outstanding;
    /// What has come of the oldest one's answer.
    QByteArray m_piece;
    bool m_isAsked = false;
};
