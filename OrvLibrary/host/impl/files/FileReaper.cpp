#include "OrvLibrary/host/FileReaper.h"

#include "OrvLibrary/host/FileUtils.h"

FileReaper::FileReaper(const fileString& path) : mPath(path) {}

FileReaper::~FileReaper()
{
    if (mArmed)
        FileUtils::removePath(mPath);
}
