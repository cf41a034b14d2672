#include "OrvLibrary/host/impl/services/Logging_p.h"

Q_LOGGING_CATEGORY(orvLibraryLog, "orv.library")
