#pragma once

#include <controller/interpreter.h>

/// What the simulated controller answers with this memory, without a network.
inline QByteArray ask(Memory *memory, const QByteArray &command)
{
    return CommandInterpreter(memory).answer(command);
}

/// The same with fresh memory.
inline QByteArray askFresh(const QByteArray &command)
{
    Memory memory;
    return ask(&memory, command);
}
