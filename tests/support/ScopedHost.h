#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "tests/support/RecordingServices.h"
#include "tests/support/TempFolder.h"

namespace test {

/// Installs a host for one test until the destructor: the well-known folders below a fresh root, preferences
/// in a file there, and services that record their calls. The destructor installs the previous services
/// again.
class ScopedHost
{
public:
    ScopedHost();
    ~ScopedHost();
    ScopedHost(const ScopedHost&) = delete;
    ScopedHost& operator=(const ScopedHost&) = delete;

    const TempFolder& folder() const { return mFolder; }
    RootPathUtils& paths() { return mPaths; }
    FilePrefSet& prefSet() { return mPrefSet; }
    PreferenceEngine& prefs() { return mPrefs; }
    RecordingMessagingSystem& messaging() { return mMessaging; }
    RecordingFileSearch& fileSearch() { return mFileSearch; }
    TestApplication& application() { return mApplication; }

    std::vector<SentMessage> messages() const { return mMessaging.messages(); }
    /// The folders given to `FileSearch::resetFileSearch`, in order.
    std::vector<std::string> resetFolders() const { return mFileSearch.folders(); }

private:
    TempFolder mFolder;
    RootPathUtils mPaths;
    FilePrefSet mPrefSet;
    PreferenceEngine mPrefs;
    RecordingMessagingSystem mMessaging;
    RecordingFileSearch mFileSearch;
    TestApplication mApplication;

    PathUtils* mFormerPaths = nullptr;
    PreferenceEngine* mFormerPrefs = nullptr;
    error::MessagingSystem* mFormerMessaging = nullptr;
    FileSearch* mFormerFileSearch = nullptr;
    Application* mFormerApplication = nullptr;
};

} // namespace test
