#pragma once

struct Options;

/// Runs the simulator until it is told to end. Returns the program's exit code; what is wrong is
/// printed.
int serve(const Options &options);
