#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include "OrvLibrary/host/fileString.h"

/// Notices changes of the library by other programs while the window is open, and those by the window itself,
/// too. Lives on the interface thread.
class LibraryWatch : public QObject
{
    Q_OBJECT

public:
    /// @param root where runs and checks are noted
    explicit LibraryWatch(const fileString& root, QObject* parent = nullptr);

Q_SIGNALS:
    /// Catalogs, or what is noted of updates, may have changed.
    void libraryChanged();
    /// The stored filters, or the one in force, were changed. The library's filter manager holds the old
    /// ones.
    void filtersChanged();

private:
    void look();
    static QString filterStamp();

    QFileSystemWatcher mWatcher;
    QTimer mPause;
    QString mFilterStamp; ///< of the file as it was looked at last
};
