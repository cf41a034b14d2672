#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace Library {

/// Holds the one library item that the user has chosen in the browser, so the host can read it. A default
/// `TreeItemData` means that none is chosen.
///
/// Any thread may make and destroy the instance. Only the interface thread may use the data.
class ORVLIBRARY_EXPORT Chooser
{
public:
    Chooser(const Chooser&) = delete;
    Chooser& operator=(const Chooser&) = delete;

    /// The instance; never null. The first call makes it, and it lives until `cleanup`.
    static Chooser* get();
    /// Destroys the instance, if there is one. The next `get` makes a new one without a chosen item.
    static void cleanup();

    /// A copy of the chosen item.
    TreeItemData getData() const;
    void setData(const TreeItemData& item);
    /// Removes the choice.
    void clearData();

private:
    Chooser();
    ~Chooser();

    TreeItemData mData;

    static Chooser* mInstance;
    static ThreadMutex mMutex;
};

} // namespace Library
