#pragma once

#include <controller/interpreter.h>
#include <controller/linebuffer.h>
#include <memory/memory.h>

/// What the simulated controller answers with this memory, without a network.
inline QByteArray ask(Memory *memory, const QByteArray &command)
{
    return answerTo({command}, {}, memory);
}

/// The same with fresh memory.
inline QByteArray askFresh(const QByteArray &command)
{
    Memory memory;
    return ask(&memory, command);
}
