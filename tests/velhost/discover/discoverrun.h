#pragma once

#include "searchrun.h"

// A short search in 127.0.0.0/28, and what it prints.

/// Runs the search with the real plug-in.
inline ProgramRun discover(const QString &udpPorts, const QString &tcpPorts,
                           const QStringList &more = {})
{
    return runBesideLoop(text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, udpPorts,
                                                             tcpPorts, shortSearch() + more));
}

/// The first message of a search with one port for each protocol.
inline QString searchMessage(int udpAddresses, int tcpAddresses)
{
    return text("velhost: asking %1 addresses by UDP at 1 ports, then %2 by TCP at 1, for at most "
                "1600 ms\n")
        .arg(udpAddresses)
        .arg(tcpAddresses);
}

inline const QString tableHead = QStringLiteral("Address    Port   Protocol  Model\n");

/// A row of the table, for a port of five digits.
inline QString tableRow(const char *address, int port, const char *protocol, const char *model)
{
    return text("%1  %2  %3  %4\n")
        .arg(text(address), QString::number(port), text(protocol).leftJustified(8), text(model));
}

inline const QString nothingFound = QStringLiteral(
    "velhost: no controller found; check that it has power and an address in this network, that "
    "its Host Link port is among those asked, and that no firewall is between\n");
