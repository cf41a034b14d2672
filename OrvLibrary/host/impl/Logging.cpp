#include "OrvLibrary/host/impl/Logging_p.h"

Q_LOGGING_CATEGORY(orvLibraryLog, "orv.library")
