#pragma once

#include <QLoggingCategory>

/// The library's logging category, "orv.library".
Q_DECLARE_LOGGING_CATEGORY(orvLibraryLog)
