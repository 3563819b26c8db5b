#pragma once

#include <QList>
#include <QMetaType>

/// Records the system calls of the code under test and makes them fail on demand. The linker
/// redirects the calls (`--wrap`), so Qt's own calls are not affected. Only the thread that called
/// watch() is affected.
namespace SystemCalls {

enum class Call { Socket, Resolve, Connect, GetFlags, SetFlags, Poll, GetOption, Send, Receive };

/// Makes the call after the next `skip` ones of its kind fail with that error number. Resolve: the
/// answer has another address family (EAFNOSUPPORT), no address (ENODATA) or a short one
/// (EMSGSIZE). Connect with 0 does not fail but succeeds at once, as a connection over loopback
/// never does by itself; with EAGAIN it is begun all the same. Poll with EBADF closes the
/// descriptor and waits for it then, as when another thread closed it.
void fail(Call call, int errorNumber, int skip = 0);

/// Makes the next send accept only that many bytes; counts as one failure.
void limitNextSend(int bytes);

/// How many calls were changed since watch().
int failures();

/// The ports that were passed to connect(), since watch(); also those of a connect that was made to
/// fail.
QList<int> ports();

/// The time-outs that were passed to poll(), in milliseconds, since watch().
QList<int> waits();

/// The descriptors that were closed, in order, since watch().
QList<int> closed();

/// Starts to record the calls of this thread; forgets earlier records and planned failures.
void watch();

/// Stops recording. Must be called before the program ends, because other code still makes such
/// calls then.
void stop();

} // namespace SystemCalls

Q_DECLARE_METATYPE(SystemCalls::Call)
