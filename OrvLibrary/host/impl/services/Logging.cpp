#include "OrvLibrary/host/impl/services/Logging_p.h"

const QLoggingCategory& orvLibraryLog()
{
    // Never destroyed: a thread may still log when the process ends.
    static const QLoggingCategory& sCategory = *new QLoggingCategory("orv.library");
    return sCategory;
}
