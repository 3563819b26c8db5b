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
    /// For all of it, 1 or more.
    int timeoutMs = 1;
};

/// How far a search has come.
struct SearchProgress
{
    quint64 tcpAsked = 0;
    quint64 tcpCount = 0;
    int controllers = 0;
};

/// What became of a search.
struct SearchResult
{
    Findings findings;
    /// `shouldContinue` ended the search.
    bool wasStopped = false;
    /// What was not asked or not noted otherwise, and why; empty when there is nothing.
    QStringList gaps;
};

/// Asks by UDP and then by TCP who answers the question for the model. Ends when all have been
/// asked, when the time is over or when `shouldContinue`, which is called a hundred times a second,
/// returns false.
SearchResult runSearch(const SearchPlan &plan,
                       const std::function<bool(const SearchProgress &)> &shouldContinue);
