#pragma once

#include <QDebug>
#include <QString>

#include <cstdio>
#include <cstdlib>

/// Ends the program with the sentence unless it holds.
inline void require(bool holds, const char *sentence)
{
    if (holds)
        return;
    std::fprintf(stderr, "It does not hold that %s.\n", sentence);
    std::abort();
}

/// The same for two values that must not differ, and shows them.
template<typename Value>
void requireSame(const Value &actual, const Value &expected, const char *sentence)
{
    if (actual == expected)
        return;
    QString shown;
    QDebug(&shown) << "actual" << actual << "expected" << expected;
    std::fprintf(stderr, "%s\n", qPrintable(shown));
    require(false, sentence);
}
