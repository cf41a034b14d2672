#pragma once

#include <QtGlobal>

// Marks what leaves the shared library; everything else is hidden.
#if defined(ORVHOST_BUILDING)
#define ORVHOST_EXPORT Q_DECL_EXPORT
#else
#define ORVHOST_EXPORT Q_DECL_IMPORT
#endif
