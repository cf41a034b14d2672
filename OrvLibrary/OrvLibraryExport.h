#pragma once

#include <QtGlobal>

// Marks the symbols that the shared library exports. All others are hidden.
#if defined(ORVLIBRARY_BUILDING)
#define ORVLIBRARY_EXPORT Q_DECL_EXPORT
#else
#define ORVLIBRARY_EXPORT Q_DECL_IMPORT
#endif
