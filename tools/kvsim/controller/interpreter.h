#pragma once

#include "controller/profile.h"
#include "memory/memory.h"

#include <QByteArray>
#include <QList>

/// The most words or bits that one RDS or WRS moves.
constexpr quint32 maximumCount = 1000;

/// Answers commands out of a memory, as the controller does.
class CommandInterpreter
{
public:
    /// `memory` must outlive the interpreter.
    explicit CommandInterpreter(Memory *memory, Profile profile = {});

    /// The answer to one command line (without its carriage return and without line feeds), ended
    /// by CR LF. A command that is refused changes nothing.
    QByteArray answer(const QByteArray &line);

    /// The answer to a line that cannot be a command.
    static QByteArray refusalOfLine();

private:
    QByteArray execute(const QByteArray &line);
    QByteArray readMany(const QByteArray &start, const QByteArray &countText) const;
    QByteArray writeMany(const QList<QByteArray> &fields);
    QByteArray read(const QByteArray &start, quint32 count) const;
    QByteArray write(const QByteArray &start, const QList<QByteArray> &texts);

    std::optional<Address> existingAddress(const QByteArray &start, quint32 count) const;

    Memory *m_memory;
    Profile m_profile;
};
