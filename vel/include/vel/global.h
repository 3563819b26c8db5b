#pragma once

#include <QtGlobal>

/// Marks what `libvel.so.1` exports.
#ifdef VEL_BUILD
#define VEL_EXPORT Q_DECL_EXPORT
#else
#define VEL_EXPORT Q_DECL_IMPORT
#endif
