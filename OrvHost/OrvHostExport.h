#pragma once

#include <QtGlobal>

// Marks the symbols that the shared library exports. All others are hidden.
#if defined(ORVHOST_BUILDING)
#define ORVHOST_EXPORT Q_DECL_EXPORT
#else
#define ORVHOST_EXPORT Q_DECL_IMPORT
#endif
