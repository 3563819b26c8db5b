#pragma once

#include "host/outputformat.h"
#include "trace/conversation.h"
#include "trace/wiretap.h"
#include "trace/wiretext.h"

#include <QFile>
#include <QHash>
#include <QMap>
#include <QString>

/// What is to be seen of the wire.
struct WireSetup
{
    /// Judges the answers. Does nothing else alone.
    bool isOn = false;
    bool prints = false;
    /// The file for the trace; empty: none.
    QString file = {};
};

/// Shows what the plug-in's calls send and receive: in JSON as records on standard output,
/// otherwise on standard error, and as lines of a wire trace in a file. Judges the answers.
class WireOutput
{
public:
    WireOutput(OutputFormat format, const WireSetup &setup);

    /// Whether the file of the trace, if there is one, can be written. Prints why it cannot.
    bool canWrite() const;

    /// To be called around each call of the plug-in; see WireTap. Returns by the index of the item
    /// what is suspect about its answers; -1 stands for an unknown item.
    void beginCall(const LogList *list, bool isRead) { m_tap.beginCall(list, isRead); }
    QMap<int, QString> endCall(const LogList &list, qint64 cycle);

    /// Whether any answer was suspect so far.
    bool wasSuspect() const { return m_wasSuspect; }

private:
    void show(const WireEvent &wireEvent, const Verdict &verdict, const LogList &list,
              qint64 cycle);

    OutputFormat m_format;
    bool m_prints;
    QFile m_file;
    bool m_wasSuspect = false;
    WireTap m_tap;
    /// By the connection's number.
    QHash<qint64, Conversation> m_conversations;
};
