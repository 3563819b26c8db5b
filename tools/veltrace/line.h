#pragma once

#include "event.h"

/// One line of the trace, as docs/wire-trace.md describes it.
struct Line
{
    const char *text = nullptr;
    std::size_t size = 0;
    /// How many bytes of the event it holds.
    std::size_t eventBytes = 0;
};

/// The line of an event, with its bytes from number `first` on, as many as one line has. It holds
/// until the next call; one thread at a time.
Line lineOf(const Event &event, std::size_t first);
