#pragma once

/// timeout(1) sends its signal twice, to the program and to its group: what comes within so many
/// milliseconds is one Ctrl+C.
constexpr int oneInterruptMs = 300;

/// Whether the program ignores the signal, for example because it was started so.
bool isIgnored(int signal);

/// Lets the handler take the signal; it is removed as soon as it does. A signal that is ignored
/// stays ignored.
void catchOnce(int signal, void (*handler)(int));
