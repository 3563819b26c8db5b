#pragma once

#include "cli/command.h"

/// `plan` lets the plug-in read every item and write the assignments against a recorder, and prints
/// what it sent and what a read cycle costs. ErrorFound when an item or a device has an error.
Command planCommand();
