#pragma once

#include "controller/faultengine.h"
#include "controller/interpreter.h"
#include "controller/linebuffer.h"
#include "controller/place.h"
#include "controller/replay.h"
#include "memory/memory.h"

#include <atomic>
#include <functional>
#include <memory>

/// What all clients together have done so far. Safe to use from several threads.
struct Counters
{
    std::atomic<quint64> commands{0};
    /// Commands that got at least one byte as an answer. A refusal is an answer, too.
    std::atomic<quint64> answers{0};
    /// Answers that are an E and a digit.
    std::atomic<quint64> refusals{0};
    /// Clients that the simulator accepted or turned away.
    std::atomic<quint64> clients{0};
};

/// What happens to a client, each with the sign that a trace shows.
enum class ClientEvent : char {
    Connected = '+',
    Received = '>',
    Fault = '!',
    Sent = '<',
    Closed = '-',
};

/// One controller, behind all its connections. Safe to use from several threads.
struct Controller
{
    // What follows is set before clients come.
    Place place;
    /// Where it listens, for example "127.0.0.1:8501".
    QByteArray endpoint;
    Profile profile;
    /// What answers all commands instead of the memory and the faults; nothing: they do.
    std::optional<Replay> replay;
    /// Called for each event at its time. `client` is the client's address and port, with "/udp"
    /// behind for a datagram. `bytes` are those of the command or the answer, the fault as it was
    /// written, or a text.
    std::function<void(const QByteArray &client, ClientEvent event, const QByteArray &bytes)> traced
        = [](const QByteArray &, ClientEvent, const QByteArray &) {};

    Memory memory;
    FaultEngine faults;
    Counters counters;
};

using Controllers = QVector<std::shared_ptr<Controller>>;

/// Executes one client's command unless a fault prevents it, counts it and says what to send.
/// `previous` is the proper answer to the client's command before, or empty; it becomes the one to
/// this command.
Reply replyTo(const QByteArray &client, const Line &line, Controller *controller,
              QByteArray *previous);

/// The counters of all as text: a line "commands 5, answers 4, refusals 1, clients 2", then one for
/// each fault in force, "fault silent@DM100: seen 2, applied 2", with a replay "not in the trace
/// 0". Where there are several controllers, a line "controller 1 127.0.0.1:8501" stands before
/// those of each.
QByteArray countersText(const Controllers &controllers);

/// Puts a fault into force in all controllers, see parseFault(). Returns an empty text, or what is
/// wrong with it.
QString addFault(const Controllers &controllers, const QByteArray &text);

/// Stores in all controllers, or in none, what two texts say, for example "DM100" and "5", in a
/// read-only device too. Behind the value a type of dataType() may stand: "3.14 Float" takes as
/// many words as that type has. Returns an empty text, or what is wrong.
QString storeText(const Controllers &controllers, const QByteArray &address,
                  const QByteArray &text);
