#pragma once

#include "discover/search/findings.h"
#include "discover/search/searcharea.h"

#include <QStringList>
#include <QVector>

#include <functional>

/// A search, ready to run.
struct SearchPlan
{
    SearchArea area;
    QVector<quint16> udpPorts;
    QVector<quint16> tcpPorts;
    /// For the whole search, 1 or more.
    int timeoutMs = 1;
};

/// The progress of a search.
struct SearchProgress
{
    quint64 tcpAsked = 0;
    quint64 tcpCount = 0;
    int controllers = 0;
};

/// The result of a search.
struct SearchResult
{
    Findings findings;
    /// `shouldContinue` returned false.
    bool wasStopped = false;
    /// Why the search is incomplete, unless it was stopped; empty when it is complete.
    QStringList gaps;
};

/// Asks for the model by UDP, then by TCP. Ends when every address and port was asked, when the
/// time is over or when `shouldContinue` returns false. `shouldContinue` is called a hundred times
/// a second.
SearchResult runSearch(const SearchPlan &plan,
                       const std::function<bool(const SearchProgress &)> &shouldContinue);
