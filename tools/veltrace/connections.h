#pragma once

#include "event.h"

#include <array>

#include <sys/socket.h>

// Which descriptors are connections to be traced, and what happens on them. Descriptors that are
// none are passed over. Safe to be called by several threads, after fork() and in signal handlers.

/// From now on, connections to these ports are traced: `sink` gets their events. The ports are
/// bits.
using Ports = std::array<unsigned char, 65536 / 8>;
void trace(const Ports &ports, Sink sink);

/// The system's text of an error, in English. Not for signal handlers.
const char *errorText(int error);

/// Microseconds on a clock that only measures how long something takes.
std::int64_t ticks();

/// Whether events of the descriptor would be reported. Quick, because every call asks it.
bool isTraced(int descriptor);

/// connect() has returned with that error number, 0 for success.
void connectReturned(int descriptor, const sockaddr *peer, socklen_t length, int error,
                     std::int64_t since);

/// The connection's pending error was asked for, and was this one; 0 for none.
void errorAsked(int descriptor, int error);

/// A call has sent or received `result` bytes, or failed with the error number.
struct Transfer
{
    const char *bytes = nullptr;
    ssize_t result = 0;
    int error = 0;
    std::int64_t since = 0;
};
void sendReturned(int descriptor, const Transfer &transfer);
void receiveReturned(int descriptor, const Transfer &transfer);

/// A wait for this descriptor is over, because something happened or because its time ran out.
void waitReturned(int descriptor, bool timedOut, std::int64_t since);

/// The host is about to close the connection.
void closes(int descriptor);
