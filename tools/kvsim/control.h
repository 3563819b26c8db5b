#pragma once

#include "controller.h"

namespace kvsim {

/// What a control command comes to.
struct ControlAnswer
{
    /// One line, or several lines and an empty one; ended by a line feed.
    QByteArray text;
    /// The simulator is to end once the answer is sent.
    bool quit = false;
};

/// Carries out one line of the control protocol, without its line end: "get DM100",
/// "set DM100 5", "fault silent@DM100", "clear", "counters" or "quit". It is for all `controllers`,
/// or with "@NAME " before it for that one. A line that is wrong changes nothing and is answered
/// "error" and what is wrong.
ControlAnswer answerControl(const QByteArray &line, const NamedControllers &controllers);

} // namespace kvsim
