#pragma once

#include "host/session.h"

#include <common/json/problem.h>

#include <QList>

class Recorder;

/// The plant of a session for dryRunProblems(): the same number of devices, each with its index as
/// its id, with the defaults of its parameters and without items. All its parameters resolve,
/// whatever is wrong with the file.
Plant devicesOnly(const Plant &draft);

/// Lets the plug-in read each item of the draft with the recorder as the controller, and returns
/// what that shows: items that the plug-in refuses or that can never have their expected value,
/// and, as warnings, items that have the same value whatever the controller holds, and what was not
/// checked. Items whose parameters have an error in `found` are left out. What the plug-in logs
/// from then on is not printed.
QList<Problem> dryRunProblems(const Session &session, const Plant &draft, Recorder *recorder,
                              const QList<Problem> &found);
