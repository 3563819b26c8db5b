#include "watch/watchkeys.h"

#include <QLatin1String>

#include <algorithm>
#include <array>

namespace {

struct Move
{
    QLatin1String keys;
    int rows;
    int pages;
};

/// Cursor keys have two forms, after the terminal's mode.
const std::array<Move, 6> moves{{{QLatin1String("\x1b[A"), -1, 0},
                                 {QLatin1String("\x1bOA"), -1, 0},
                                 {QLatin1String("\x1b[B"), 1, 0},
                                 {QLatin1String("\x1bOB"), 1, 0},
                                 {QLatin1String("\x1b[5~"), 0, -1},
                                 {QLatin1String("\x1b[6~"), 0, 1}}};

} // namespace

bool applyKeys(QString keys, WatchWish *wish)
{
    while (!keys.isEmpty()) {
        const auto *const move = std::find_if(moves.begin(), moves.end(), [&keys](const Move &any) {
            return keys.startsWith(any.keys);
        });
        const QChar key = keys.at(0);
        keys.remove(0, move != moves.end() ? move->keys.size() : 1);
        if (move != moves.end()) {
            wish->firstRow += move->rows + move->pages * wish->page;
        } else if (key == u'\x1b') {
            wish->filter.clear();
            wish->isTyping = false;
        } else if (wish->isTyping && (key == u'\r' || key == u'\n')) {
            wish->isTyping = false;
        } else if (wish->isTyping && (key == u'\x7f' || key == u'\b')) {
            wish->filter.chop(1);
        } else if (wish->isTyping) {
            wish->filter += key.isPrint() ? QString(key) : QString();
        } else if (key == u'/') {
            wish->isTyping = true;
        } else if (key == u'o') {
            wish->wantsOutages = !wish->wantsOutages;
            wish->firstRow = 0;
        } else if (key == u'q') {
            return true;
        }
    }
    return false;
}
