#pragma once

#include "controller/controller.h"

#include <functional>

/// The answer to a control command.
struct ControlAnswer
{
    /// One line, or several lines and an empty one; ended by a line feed.
    QByteArray text;
    /// The simulator is to end once the answer is sent.
    bool quit = false;
};

/// Writes the memory of all controllers to their file; returns an empty text, or why it could not.
using DumpFunction = std::function<QString()>;

/// What control commands act on.
struct ControlTarget
{
    NamedControllers controllers;
    /// Empty when there is no such file.
    DumpFunction dump;
};

/// Carries out one line of the control protocol, without its line end: "get DM100..DM109",
/// "set DM100 3.14 Float", "fault silent@DM100", "clear silent@DM100", "clear", "counters", "dump"
/// or "quit". It is for all controllers, or with "@NAME " before it for that one. A line that is
/// wrong changes nothing and is answered "error" and what is wrong.
ControlAnswer answerControl(const QByteArray &line, const ControlTarget &target);
