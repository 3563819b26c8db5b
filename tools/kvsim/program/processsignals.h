#pragma once

#include <functional>

class QCoreApplication;

/// Lets SIGINT and SIGTERM end the application's event loop with exit code 0, and calls `report`
/// from the event loop for SIGUSR1. To be called before any thread is started. False when the
/// system has no room for it; `errno` tells why.
bool handleSignals(QCoreApplication *application, const std::function<void()> &report);
