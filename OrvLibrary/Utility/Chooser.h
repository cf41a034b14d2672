#pragma once

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace Library {

/// The one library item that the user has chosen in the browser, for the rest of the host to read. A default
/// `TreeItemData` means that nothing is chosen.
///
/// Making and destroying the instance may happen on any thread; the data is for the interface thread alone.
class ORVLIBRARY_EXPORT Chooser
{
public:
    Chooser(const Chooser&) = delete;
    Chooser& operator=(const Chooser&) = delete;

    /// The instance, made at the first call; never null. It lives until `cleanup`.
    static Chooser* get();
    /// Destroys the instance if there is one; the next `get` makes a new one, with nothing chosen.
    static void cleanup();

    /// A copy of the chosen item.
    TreeItemData getData() const;
    void setData(const TreeItemData& item);
    /// Nothing is chosen any more.
    void clearData();

private:
    Chooser();
    ~Chooser();

    TreeItemData mData;

    static Chooser* mInstance;
    static ThreadMutex mMutex;
};

} // namespace Library
