#pragma once

#include "host/outputformat.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// What serving one item sends.
struct PlannedItem
{
    QString device;
    QString item;
    bool isWrite = false;
    /// The command lines, each with its carriage return; none when the item is never sent.
    QList<QByteArray> lines;
    /// Empty: no error.
    QString error;
};

/// What one read cycle of a device costs.
struct DeviceBudget
{
    QString device;
    int exchanges = 0;
    /// The device's time-out in milliseconds; nothing when its parameter "timeout" is no whole
    /// number above 1, whose meaning only the plug-in knows.
    std::optional<int> timeoutMs;
    /// Why the device is never served; empty: no error.
    QString error;
};

struct Plan
{
    QList<PlannedItem> items;
    QList<DeviceBudget> budgets;
};

/// The items with their command lines, then the budget of each device, every exchange taken to last
/// `rttMs` milliseconds at best and the device's time-out at worst. As table or JSON.
QString planText(OutputFormat format, const Plan &plan, int rttMs);
