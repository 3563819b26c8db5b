#pragma once

#include <functional>

/// Lets SIGINT, SIGTERM and SIGHUP end the application's event loop with exit code 0, and calls
/// `report` from the event loop for SIGUSR1. A second SIGINT ends the program at once; several
/// that come together count as one. SIGHUP stays ignored if the program was started so. To be
/// called before any thread is started. False when the system has no room for it; `errno` tells
/// why.
bool handleSignals(const std::function<void()> &report);
