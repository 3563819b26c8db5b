#pragma once

#include <cstddef>
#include <cstdint>

/// What has happened on a connection.
struct Event
{
    /// As docs/wire-trace.md names it.
    const char *name = nullptr;
    /// A null pointer where the event has none.
    const char *outcome = nullptr;
    /// What was sent or received: `size` bytes.
    const char *bytes = nullptr;
    std::size_t size = 0;
    /// In microseconds; negative where the event has none.
    std::int64_t waited = -1;
    unsigned int connection = 0;
    /// Address and port.
    const char *peer = nullptr;
};

/// Takes an event. Never two at once; `errno` and the signals are its own to keep.
using Sink = void (*)(const Event &event);
