#pragma once

#include <QtGlobal>

// Marks what leaves the shared library; everything else is hidden.
#if defined(ORVLIBRARY_BUILDING)
#define ORVLIBRARY_EXPORT Q_DECL_EXPORT
#else
#define ORVLIBRARY_EXPORT Q_DECL_IMPORT
#endif
