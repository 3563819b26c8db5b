#pragma once

#include <QList>
#include <QMetaType>

/// The system calls of the code under test, made to fail on demand. A program that links this file
/// redirects the calls by the linker (`--wrap`), so only its own objects are affected, not Qt; a
/// thread interferes with itself only.
namespace SystemCalls {

enum class Call { Socket, Resolve, Connect, GetFlags, SetFlags, Poll, GetOption, Send, Receive };

/// Makes the call after the next `skip` ones of its kind fail with that error number. Resolve: the
/// answer has another address family (EAFNOSUPPORT), no address (ENODATA) or a short one
/// (EMSGSIZE). Connect with 0 does not fail but succeeds at once, as a connection over loopback
/// never does by itself.
void fail(Call call, int errorNumber, int skip = 0);

/// Makes the next send take only that many bytes; counts as one interference.
void limitNextSend(int bytes);

/// How many calls were interfered with since the last reset.
int failures();

/// The time-outs that were passed to poll(), in milliseconds, since the last reset.
QList<int> waits();

/// The descriptors that were closed, in order, since the last reset.
QList<int> closed();

/// Forgets everything.
void reset();

} // namespace SystemCalls

Q_DECLARE_METATYPE(SystemCalls::Call)
