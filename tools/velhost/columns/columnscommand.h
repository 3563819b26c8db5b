#pragma once

#include "cli/command.h"

/// `columns` shows what the plug-in declares.
Command columnsCommand();
