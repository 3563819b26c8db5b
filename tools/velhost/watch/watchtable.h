#pragma once

#include "host/logoutput.h"
#include "watch/terminalscreen.h"
#include "watch/watchedplant.h"

#include <QList>
#include <QString>

#include <vector>

/// How changed cells stand out.
enum class Marking {
    None,
    Star,  ///< a star before them
    Colour ///< and errors, too
};

/// What a drawing shows.
struct WatchPicture
{
    /// What stands above the table.
    QString title;
    const std::vector<WatchedDevice> *devices = nullptr;
    /// The latest entries of the plug-in's log.
    QList<CountedEntry> log;
    /// The watch's clock, in milliseconds.
    qint64 nowMs = 0;
    /// What changed after this cycle stands out.
    qint64 sinceCycle = 0;
};

/// The picture in as many lines and columns as the screen has at most, without a line feed at the
/// end. A cell that is cut ends in "…", columns at the right for which there is no room are left
/// out, and the rows for which there is none are counted in a line of their own.
QString watchScreenText(const WatchPicture &picture, ScreenSize size, Marking marking);

/// The whole table, nothing cut and nothing marked.
QString watchTableText(const std::vector<WatchedDevice> &devices, qint64 nowMs);

/// A span of time for people, for example "59 s", "12 min 05 s", "3 h 00 min" or "2 d 07 h".
QString ageText(qint64 milliseconds);
