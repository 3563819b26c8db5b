#pragma once

#include <QString>

/// What the user wants to see.
struct WatchWish
{
    /// Only rows with this text in device or item.
    QString filter;
    /// The keys go to the filter.
    bool isTyping = false;
    bool wantsOutages = false;
    /// The first row shown, and how many there are on the screen.
    int firstRow = 0;
    int page = 1;
};

/// Changes the wish as the keys say, which are as a terminal sends them. Returns whether the watch
/// should end.
bool applyKeys(QString keys, WatchWish *wish);
