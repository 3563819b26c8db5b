#pragma once

#include <common/console.h>

struct Options;

/// Runs the simulator until it is told to end; what is wrong is printed.
ExitCode serve(const Options &options);
