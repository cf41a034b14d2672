#include "OrvHost/AppHost.h"

#include <filesystem>
#include <stdexcept>

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

#include "OrvHost/ConsoleMessages.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

class ProgramApplication : public Application
{
public:
    explicit ProgramApplication(const std::string& index) : mContentIndex(index) {}

    std::string name() const override { return AppHost::kName; }
    fileString contentIndexName() const override { return mContentIndex; }
    void setContentIndexName(const std::string& index) { mContentIndex = fileString(index); }

private:
    fileString mContentIndex;
};

/// The folders below the root, with another temporary folder if one was chosen.
class HostPaths : public RootPathUtils
{
public:
    HostPaths(const fileString& root, const fileString& temporaryFolder)
        : RootPathUtils(root), mTemporaryFolder(temporaryFolder)
    {
    }

    fileString getTempPath() const override
    {
        return mTemporaryFolder.empty() ? RootPathUtils::getTempPath() : mTemporaryFolder / fileString();
    }

private:
    fileString mTemporaryFolder;
};

} // namespace

class AppHost::Services
{
public:
    explicit Services(const Settings& settings)
        : mPaths(rootOf(settings.root), settings.temporaryFolder),
          mPreferences(preparedPreferencesFile(mPaths, settings.createsFolders)),
          mEngine(mPreferences),
          mApplication(settings.contentIndexName)
    {
        mPreferences.declareLibraryPrefs();
        mFormerPaths = PathUtils::install(&mPaths);
        mFormerEngine = PreferenceEngine::install(&mEngine);
        mFormerApplication = Application::install(&mApplication);
        mFormerMessages = error::MessagingSystem::install(&mMessages);
        if (mTranslator.load(QLocale(), "orvlibrary", "_", ":/orvlibrary/translations"))
            QCoreApplication::installTranslator(&mTranslator);
    }

    ~Services()
    {
        error::MessagingSystem::install(mFormerMessages);
        Application::install(mFormerApplication);
        PreferenceEngine::install(mFormerEngine);
        PathUtils::install(mFormerPaths);
    }

    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    const RootPathUtils& paths() const { return mPaths; }
    ProgramApplication& application() { return mApplication; }

private:
    /// Creates the folders first, because the preferences are in one of them.
    static fileString preparedPreferencesFile(const RootPathUtils& paths, bool createsFolders)
    {
        std::string reason;
        if (createsFolders && !paths.createFolders(reason))
            throw std::runtime_error("cannot create " + reason);
        return paths.root() / fileString("preferences.json");
    }

    HostPaths mPaths;
    FilePrefSet mPreferences;
    PreferenceEngine mEngine;
    ProgramApplication mApplication;
    ConsoleMessages mMessages;
    QTranslator mTranslator; ///< its destructor removes it from the application
    PathUtils* mFormerPaths = nullptr;
    PreferenceEngine* mFormerEngine = nullptr;
    Application* mFormerApplication = nullptr;
    error::MessagingSystem* mFormerMessages = nullptr;
};

fileString AppHost::rootOf(const fileString& chosen)
{
    const fileString root = chosen.empty() ? RootPathUtils::defaultRoot() : chosen;
    return RootPathUtils(fileString(fs::absolute(root.toNativeString()).lexically_normal().string())).root();
}

AppHost::AppHost(const Settings& settings) : mServices(std::make_unique<Services>(settings)) {}

AppHost::~AppHost() = default;

const fileString& AppHost::root() const
{
    return mServices->paths().root();
}

fileString AppHost::preferencesFile() const
{
    return root() / fileString("preferences.json");
}

void AppHost::setContentIndexName(const std::string& name)
{
    mServices->application().setContentIndexName(name);
}

} // namespace OrvHost
