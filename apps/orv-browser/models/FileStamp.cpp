#include "apps/orv-browser/models/FileStamp.h"

#include <sys/stat.h>

QString FileStamp::of(const fileString& file)
{
    struct stat status = {};
    if (stat(file.toNativeString().c_str(), &status) != 0)
        return {};
    return QStringLiteral("%1 %2 %3 %4.%5")
        .arg(status.st_dev)
        .arg(status.st_ino)
        .arg(status.st_size)
        .arg(status.st_mtim.tv_sec)
        .arg(status.st_mtim.tv_nsec);
}
