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

constexpr int kProgressPercentage = 2;

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

fileString absoluteRoot(const fileString& root)
{
    const fileString chosen = root.empty() ? RootPathUtils::defaultRoot() : root;
    return fileString(fs::absolute(chosen.toNativeString()).lexically_normal().string());
}

void declarePreferences(FilePrefSet& preferences)
{
    preferences.declare(PrefId::kProgressDisplayType, "Progress display", kProgressPercentage);
    preferences.declare(PrefId::kLastCoreUpdateHadError, "Last core update had an error", false);
    preferences.declare(PrefId::kExcludeCoreContent, "Full update leaves core content alone", false);
}

} // namespace

class AppHost::Services
{
public:
    explicit Services(const Settings& settings)
        : mPaths(absoluteRoot(settings.root)),
          mPreferences(preparedPreferencesFile(mPaths)),
          mEngine(mPreferences),
          mApplication(settings.contentIndexName)
    {
        declarePreferences(mPreferences);
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
    /// The folders come first: the preferences are read from one of them.
    static fileString preparedPreferencesFile(const RootPathUtils& paths)
    {
        std::string reason;
        if (!paths.createFolders(reason))
            throw std::runtime_error("cannot create " + reason);
        return paths.root() / fileString("preferences.json");
    }

    RootPathUtils mPaths;
    FilePrefSet mPreferences;
    PreferenceEngine mEngine;
    ProgramApplication mApplication;
    ConsoleMessages mMessages;
    QTranslator mTranslator; ///< takes itself away at its end
    PathUtils* mFormerPaths = nullptr;
    PreferenceEngine* mFormerEngine = nullptr;
    Application* mFormerApplication = nullptr;
    error::MessagingSystem* mFormerMessages = nullptr;
};

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
