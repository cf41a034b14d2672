#include "tests/support/ForwardingServices.h"

namespace test {

namespace {

constexpr char kReason[] = "injected failure";
constexpr int kErrorNumber = 7;

} // namespace

fileString ForwardingPathUtils::getUserLibraryDatabasePath() const
{
    mCalls.enter(Service::Paths, "getUserLibraryDatabasePath");
    return mBehind.getUserLibraryDatabasePath();
}

fileString ForwardingPathUtils::getCoreLibraryDatabasePath() const
{
    mCalls.enter(Service::Paths, "getCoreLibraryDatabasePath");
    return mBehind.getCoreLibraryDatabasePath();
}

fileString ForwardingPathUtils::getBonusLibraryDatabasePath() const
{
    mCalls.enter(Service::Paths, "getBonusLibraryDatabasePath");
    return mBehind.getBonusLibraryDatabasePath();
}

fileString ForwardingPathUtils::getManufacturerLibraryPath() const
{
    mCalls.enter(Service::Paths, "getManufacturerLibraryPath");
    return mBehind.getManufacturerLibraryPath();
}

fileString ForwardingPathUtils::getManufacturerDataPath() const
{
    mCalls.enter(Service::Paths, "getManufacturerDataPath");
    return mBehind.getManufacturerDataPath();
}

fileString ForwardingPathUtils::getProprietaryLibraryReferencedFilesPath() const
{
    mCalls.enter(Service::Paths, "getProprietaryLibraryReferencedFilesPath");
    return mBehind.getProprietaryLibraryReferencedFilesPath();
}

fileString ForwardingPathUtils::getUserTexturePath() const
{
    mCalls.enter(Service::Paths, "getUserTexturePath");
    return mBehind.getUserTexturePath();
}

fileString ForwardingPathUtils::getTempPath() const
{
    mCalls.enter(Service::Paths, "getTempPath");
    return mBehind.getTempPath();
}

Pref ForwardingPrefSet::getPref(int id) const
{
    mCalls.enter(Service::Preferences, "getPref");
    return mBehind.getPref(id);
}

void ForwardingPrefSet::setPref(int id, const PrefValue& value)
{
    mCalls.enter(Service::Preferences, "setPref");
    mBehind.setPref(id, value);
}

bool ForwardingPrefSet::hasPref(int id) const
{
    mCalls.enter(Service::Preferences, "hasPref");
    return mBehind.hasPref(id);
}

std::string ForwardingStringTable::text(std::uint32_t number) const
{
    return mCalls.enter(Service::Strings, "text") ? std::string() : mBehind.text(number);
}

std::string ForwardingStringTable::translation(const std::string& key) const
{
    return mCalls.enter(Service::Strings, "translation") ? key : mBehind.translation(key);
}

void ForwardingMessagingSystem::notify(const char* sourceFile, int line, const error::Trait& trait,
                                       int messageNumber, const marl::unicode::String& text1,
                                       const marl::unicode::String& text2, const marl::unicode::String& text3)
{
    mCalls.enter(Service::Messages, "notify");
    mBehind.notify(sourceFile, line, trait, messageNumber, text1, text2, text3);
}

std::string ForwardingApplication::name() const
{
    mCalls.enter(Service::Application, "name");
    return mBehind.name();
}

fileString ForwardingApplication::contentIndexName() const
{
    mCalls.enter(Service::Application, "contentIndexName");
    return mBehind.contentIndexName();
}

void ForwardingFileSearch::resetFileSearch(const fileString& folder)
{
    mCalls.enter(Service::FileSearch, "resetFileSearch");
    mBehind.resetFileSearch(folder);
}

bool ForwardingCurl::downloadable(const std::string& url)
{
    return !mCalls.enter(Service::Curl, "downloadable") && OrvHost::ForwardingCurl::downloadable(url);
}

fileString ForwardingCurl::download(const std::string& url)
{
    return mCalls.enter(Service::Curl, "download") ? fileString() : OrvHost::ForwardingCurl::download(url);
}

bool ForwardingCurl::download_to_location(const std::string& url, const fileString& target,
                                          std::string& reason)
{
    if (!mCalls.enter(Service::Curl, "download_to_location"))
        return OrvHost::ForwardingCurl::download_to_location(url, target, reason);
    reason = kReason;
    return false;
}

bool ForwardingCurl::download_to_location(const std::string& url, const fileString& target,
                                          const std::vector<std::string>& headerLines, void* context,
                                          ProgressFunction progress, std::string& reason, int& errorNumber)
{
    if (!mCalls.enter(Service::Curl, "download_to_location with progress"))
        return OrvHost::ForwardingCurl::download_to_location(url, target, headerLines, context, progress,
                                                             reason, errorNumber);
    reason = kReason;
    errorNumber = kErrorNumber;
    return false;
}

bool ForwardingCurl::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                                  std::string& headerText, std::int64_t& status)
{
    return !mCalls.enter(Service::Curl, "getURLHeader") &&
           OrvHost::ForwardingCurl::getURLHeader(url, headerLines, headerText, status);
}

bool ForwardingCurl::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                               std::string& body, bool followRedirects, int timeoutSeconds)
{
    return !mCalls.enter(Service::Curl, "browseURL") &&
           OrvHost::ForwardingCurl::browseURL(url, headerLines, body, followRedirects, timeoutSeconds);
}

void ForwardingCurl::prefetchHeaders(const std::vector<HeaderRequest>& requests)
{
    if (!mCalls.enter(Service::Curl, "prefetchHeaders"))
        OrvHost::ForwardingCurl::prefetchHeaders(requests);
}

void ForwardingCurl::prefetchDownloads(const std::vector<DownloadRequest>& requests)
{
    if (!mCalls.enter(Service::Curl, "prefetchDownloads"))
        OrvHost::ForwardingCurl::prefetchDownloads(requests);
}

std::string ForwardingCurl::urlAfterRedirects(const std::string& url)
{
    return mCalls.enter(Service::Curl, "urlAfterRedirects") ? std::string()
                                                            : OrvHost::ForwardingCurl::urlAfterRedirects(url);
}

ForwardingServices::ForwardingServices()
    : mPaths(PathUtils::getObject(), mCalls),
      mPrefSet(PreferenceEngine::getThePrefs().prefSet(), mCalls),
      mPrefs(mPrefSet),
      mStrings(StringTable::get(), mCalls),
      mMessages(error::MessagingSystem::control(), mCalls),
      mFileSearch(FileSearch::get(), mCalls),
      mCurl(Curl::get(), mCalls)
{
    mFormerApplication = gApp.load();
    if (mFormerApplication)
        mApplication = std::make_unique<ForwardingApplication>(*mFormerApplication, mCalls);
    Application::install(mApplication.get());
    mFormerPaths = PathUtils::install(&mPaths);
    mFormerPrefs = PreferenceEngine::install(&mPrefs);
    mFormerStrings = StringTable::install(&mStrings);
    mFormerMessages = error::MessagingSystem::install(&mMessages);
    mFormerFileSearch = FileSearch::install(&mFileSearch);
    mFormerCurl = Curl::install(&mCurl);
}

ForwardingServices::~ForwardingServices()
{
    Curl::install(mFormerCurl);
    FileSearch::install(mFormerFileSearch);
    error::MessagingSystem::install(mFormerMessages);
    StringTable::install(mFormerStrings);
    PreferenceEngine::install(mFormerPrefs);
    PathUtils::install(mFormerPaths);
    Application::install(mFormerApplication);
}

} // namespace test
