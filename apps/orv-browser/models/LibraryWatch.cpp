#include "apps/orv-browser/models/LibraryWatch.h"

#include <QFile>

#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/FileStamp.h"
#include "apps/orv-browser/models/LibraryContent.h"

namespace {

constexpr int kPauseMilliseconds = 200; // one program's changes come close together

} // namespace

LibraryWatch::LibraryWatch(const fileString& root, QObject* parent)
    : QObject(parent), mFilterStamp(filterStamp())
{
    mPause.setSingleShot(true);
    mPause.setInterval(kPauseMilliseconds);
    connect(&mPause, &QTimer::timeout, this, &LibraryWatch::look);
    connect(&mWatcher, &QFileSystemWatcher::directoryChanged, &mPause, [this] { mPause.start(); });
    mWatcher.addPath(QFile::decodeName(root.toNativeString().c_str()));
    for (int category = 0; category < LibraryContent::kCategories; ++category)
        mWatcher.addPath(QFile::decodeName(LibraryContent::folderOf(category).toNativeString().c_str()));
}

QString LibraryWatch::filterStamp()
{
    return FileStamp::of(LibraryFilterManager::getLibraryFilterManager().getFilterFullname());
}

void LibraryWatch::look()
{
    Q_EMIT libraryChanged();
    const QString stamp = filterStamp();
    if (stamp == mFilterStamp)
        return;
    mFilterStamp = stamp;
    Q_EMIT filtersChanged();
}
