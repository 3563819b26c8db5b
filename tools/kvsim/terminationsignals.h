#pragma once

class QCoreApplication;

namespace kvsim {

/// Lets SIGINT and SIGTERM end the application's event loop with exit code 0. To be called before
/// any thread is started. False when the system has no room for it; `errno` tells why.
bool quitOnTerminationSignals(QCoreApplication *application);

} // namespace kvsim
