#pragma once

#include <QList>
#include <QMetaType>

/// The system calls of the code under test, recorded and made to fail on demand. A program that
/// links this file redirects the calls by the linker (`--wrap`), so Qt's own calls are not
/// affected; nor is any other thread than the one that watches.
namespace SystemCalls {

enum class Call { Socket, Resolve, Connect, GetFlags, SetFlags, Poll, GetOption, Send, Receive };

/// Makes the call after the next `skip` ones of its kind fail with that error number. Resolve: the
/// answer has another address family (EAFNOSUPPORT), no address (ENODATA) or a short one
/// (EMSGSIZE). Connect with 0 does not fail but succeeds at once, as a connection over loopback
/// never does by itself; with EAGAIN it is begun all the same. Poll with EBADF closes the
/// descriptor and waits for it then, as when another thread closed it.
void fail(Call call, int errorNumber, int skip = 0);

/// Makes the next send take only that many bytes; counts as one interference.
void limitNextSend(int bytes);

/// How many calls were interfered with since watch().
int failures();

/// The ports that were passed to connect(), since watch(); also those of a connect that was made to
/// fail.
QList<int> ports();

/// The time-outs that were passed to poll(), in milliseconds, since watch().
QList<int> waits();

/// The descriptors that were closed, in order, since watch().
QList<int> closed();

/// Begins to watch the calls of this thread, with nothing recorded and nothing planned.
void watch();

/// Watches no longer. To be called before the program ends, when others still make such calls.
void stop();

} // namespace SystemCalls

Q_DECLARE_METATYPE(SystemCalls::Call)
