#pragma once

#include "controller/controller.h"

#include <functional>

/// Writes the memory of all controllers to their file; returns an empty text, or why it could not.
using DumpFunction = std::function<QString()>;

/// What control commands act on.
struct ControlTarget
{
    Controllers controllers;
    /// Empty when there is no such file.
    DumpFunction dump;
};

/// Carries out one line of the control protocol, without its line end: "get DM100..DM109",
/// "set DM100 3.14 Float", "fault silent@DM100", "clear silent@DM100", "clear", "counters", "dump"
/// or "quit", which ends the application's event loop. It is for all controllers, or with "@NAME "
/// before it for that one. The answer is one line, or several lines and an empty one. A line that
/// is wrong changes nothing and is answered "error" and what is wrong.
QByteArray answerControl(const QByteArray &line, const ControlTarget &target);
