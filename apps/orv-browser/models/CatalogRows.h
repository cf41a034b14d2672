#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <QList>
#include <QString>

#include "OrvLibrary/UI/TreeData.h"
#include "OrvLibrary/host/fileString.h"

/// The children of one folder of a catalog, sorted, which come into a tree piece by piece. Made on any
/// thread, then handed to the interface thread.
class CatalogRows
{
public:
    /// Reads the folders and items of a folder, or the folders at the top. Never throws.
    /// @param folder -1 for the top
    static std::shared_ptr<CatalogRows> read(const fileString& database, long long folder);

    /// The next rows, at most `count`; owned by the caller.
    QList<QStandardItem*> take(std::size_t count);
    bool isEmpty() const { return mNext == mNodes.size(); }
    /// Why there are no rows, for people; empty when they could be read.
    const QString& problem() const { return mProblem; }

private:
    void readFrom(const fileString& database, long long folder);

    std::vector<std::unique_ptr<Library::TreeData>> mNodes;
    std::size_t mNext = 0;
    QString mProblem;
};
