#pragma once

#include "host/outputformat.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// What the plug-in sends for one item.
struct PlannedItem
{
    QString device;
    QString item;
    /// read or write
    QString operation;
    /// The command lines, each with its carriage return; empty when nothing is sent.
    QList<QByteArray> lines;
    /// Empty: no error.
    QString error;
};

/// The exchanges and times of one read cycle of a device.
struct DeviceBudget
{
    QString device;
    int exchanges = 0;
    /// The device's time-out in milliseconds. Nothing when its parameter "timeout" is no whole
    /// number above 1: only the plug-in knows what it makes of that.
    std::optional<int> timeoutMs;
    /// Why the plug-in never serves the device; empty: no error.
    QString error;
};

struct Plan
{
    QList<PlannedItem> items;
    QList<DeviceBudget> budgets;
};

/// The items with their command lines, then the budget of each device, as table or JSON. An
/// exchange takes `rttMs` milliseconds at best and the device's time-out at worst.
QString planText(OutputFormat format, const Plan &plan, int rttMs);
