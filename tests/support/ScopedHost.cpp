#include "tests/support/ScopedHost.h"

#include <stdexcept>

namespace test {

ScopedHost::ScopedHost()
    : mPaths(fileString(mFolder.path())), mPrefSet(mFolder.file("preferences.json")), mPrefs(mPrefSet)
{
    std::string reason;
    if (!mPaths.createFolders(reason))
        throw std::runtime_error("no folders: " + reason);
    mPrefSet.declareLibraryPrefs();
    mFormerPaths = PathUtils::install(&mPaths);
    mFormerPrefs = PreferenceEngine::install(&mPrefs);
    mFormerMessaging = error::MessagingSystem::install(&mMessaging);
    mFormerFileSearch = FileSearch::install(&mFileSearch);
    mFormerApplication = Application::install(&mApplication);
}

ScopedHost::~ScopedHost()
{
    Application::install(mFormerApplication);
    FileSearch::install(mFormerFileSearch);
    error::MessagingSystem::install(mFormerMessaging);
    PreferenceEngine::install(mFormerPrefs);
    PathUtils::install(mFormerPaths);
}

} // namespace test
