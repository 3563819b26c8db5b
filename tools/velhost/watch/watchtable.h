#pragma once

#include "watch/terminalscreen.h"
#include "watch/watchedplant.h"
#include "watch/watchkeys.h"

#include <QString>
#include <QStringList>

#include <vector>

/// The content of the screen.
struct WatchPicture
{
    /// The lines above the table.
    QStringList title;
    const WatchState &state;
    /// The watch's clock, in milliseconds.
    qint64 nowMs = 0;
    /// What has changed after this cycle is marked.
    qint64 sinceCycle = 0;
};

/// The text of a screen of that size, without a line feed at the end. Errors stand first, without
/// what follows from another error, which is counted. A cell that is cut ends in "…". Columns at
/// the right that do not fit are left out. Rows that do not fit are counted in a line of their own.
/// What has changed is marked by a colour, as errors are, or else by a star. `wish` is adapted to
/// what there is.
QString watchScreenText(const WatchPicture &picture, ScreenSize size, bool hasColour,
                        WatchWish *wish);

/// The whole table, not cut and without marks.
QString watchTableText(const std::vector<WatchedDevice> &devices, qint64 nowMs);

/// A duration as text, for example "59 s", "12 min 05 s", "3 h 00 min" or "2 d 07 h".
QString ageText(qint64 milliseconds);
