#pragma once

#include "cli/command.h"

/// `wire`: shows a recorded wire trace for people, with a verdict on each answer.
Command wireCommand();
