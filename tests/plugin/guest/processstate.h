#pragma once

#include <QByteArrayList>

/// What a guest in this process must leave as it is, a line for each: open descriptors, threads,
/// what signals do, locale, working folder, mode of new files, environment, floating-point mode.
QByteArrayList processState();

/// The bytes that the program has allocated and not freed. Exact only where the environment turns
/// the allocator's caches off, see tst_guest.
quint64 heapInUse();
