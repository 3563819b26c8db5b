#pragma once

#include "cli/command.h"

/// `plan` lets the plug-in read every item and write the assignments with a recorder as the
/// controller. It prints what the plug-in sent and how long a read cycle takes. ErrorFound when an
/// item or a device has an error.
Command planCommand();
