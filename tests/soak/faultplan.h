#pragma once

#include <array>

/// What a fault may do to values without an error that names it.
enum class Harm {
    /// Nothing: a value is right, or it is missing.
    None,
    /// The item that it strikes may get a wrong value.
    Item,
    /// This item, and all behind it until the connection is a new one: an answer came in pieces or
    /// twice, so that each command meets the answer of an earlier one.
    Stream,
};

/// One fault of the simulator as the soak applies it.
struct PlannedFault
{
    /// Without a selector.
    const char *text;
    Harm harm;
    /// Whether it strikes a new client and not a command.
    bool strikesClient = false;
};

/// One of every kind, with its arguments, and of some kinds several.
extern const std::array<PlannedFault, 32> plannedFaults;
