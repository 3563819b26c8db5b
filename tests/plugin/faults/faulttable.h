#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <vector>

/// What the connection is good for when a fault has struck.
enum class Then {
    /// Everything.
    GoesOn,
    /// Nothing: the controller is still busy with the command that was struck.
    Stalls,
    /// Everything, but the rest of the answer comes too, as the beginning of what comes next.
    SendsRest,
    /// The controller has closed it.
    IsClosed,
    /// The controller has reset it.
    IsReset,
    /// The controller has closed it, and nobody listens.
    IsGone,
};

/// One fault of the simulator, and what it does.
struct FaultEffect
{
    /// As the simulator takes it.
    const char *fault;
    /// In a user's words.
    const char *words;
    /// What of the proper answer arrives before a time-out; `previous` is the answer to the command
    /// before. Null: this fault strikes new clients.
    QByteArray (*arrives)(const QByteArray &answer, const QByteArray &previous);
    Then then;
    bool executed = true;
};

const std::vector<FaultEffect> &faultEffects();

enum class FaultMoment { Connecting, FirstItem, MiddleItem, ReadBeforeBit, BitWrite, LastItem };

constexpr std::array<FaultMoment, 6> moments{FaultMoment::Connecting, FaultMoment::FirstItem,
                                             FaultMoment::MiddleItem, FaultMoment::ReadBeforeBit,
                                             FaultMoment::BitWrite,   FaultMoment::LastItem};

const char *nameOf(FaultMoment moment);

/// Which command of a cycle is struck, counted from 0; -1: none.
int struckCommand(FaultMoment moment, bool isWrite);

/// Where the fault strikes, in the simulator's words; empty for new clients and for commands of
/// others.
const char *selectorOf(FaultMoment moment, bool isWrite);

/// Why there is no such case; an empty text when there is one.
QString whyNot(const FaultEffect &effect, FaultMoment moment, bool isWrite);
