#include "OrvLibrary/Utility/Chooser.h"

namespace Library {

Chooser* Chooser::mInstance = nullptr;
ThreadMutex Chooser::mMutex;

Chooser::Chooser() = default;
Chooser::~Chooser() = default;

Chooser* Chooser::get()
{
    ThreadUniqueLock<ThreadMutex> lock(mMutex);
    if (!mInstance)
        mInstance = new Chooser;
    return mInstance;
}

void Chooser::cleanup()
{
    ThreadUniqueLock<ThreadMutex> lock(mMutex);
    delete mInstance;
    mInstance = nullptr;
}

TreeItemData Chooser::getData() const
{
    return mData;
}

void Chooser::setData(const TreeItemData& item)
{
    mData = item;
}

void Chooser::clearData()
{
    mData = TreeItemData();
}

} // namespace Library
