#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OrvHost/update/ForwardingCurl.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringTable.h"
#include "tests/support/ServiceCalls.h"

/// One implementation of every installable service. Each forwards its calls to another implementation, counts
/// them, and fails or throws at planned calls. It owns neither the other implementation nor the counter.
namespace test {

class ForwardingPathUtils : public PathUtils
{
public:
    ForwardingPathUtils(PathUtils& behind, ServiceCalls& calls) : mBehind(behind), mCalls(calls) {}

    fileString getUserLibraryDatabasePath() const override;
    fileString getCoreLibraryDatabasePath() const override;
    fileString getBonusLibraryDatabasePath() const override;
    fileString getManufacturerLibraryPath() const override;
    fileString getManufacturerDataPath() const override;
    fileString getProprietaryLibraryReferencedFilesPath() const override;
    fileString getUserTexturePath() const override;
    fileString getTempPath() const override;

private:
    PathUtils& mBehind;
    ServiceCalls& mCalls;
};

class ForwardingPrefSet : public PrefSet
{
public:
    ForwardingPrefSet(PrefSet& behind, ServiceCalls& calls) : mBehind(behind), mCalls(calls) {}

    Pref getPref(int id) const override;
    void setPref(int id, const PrefValue& value) override;
    bool hasPref(int id) const override;

private:
    PrefSet& mBehind;
    ServiceCalls& mCalls;
};

/// Its failure results are an empty text and the key without a translation.
class ForwardingStringTable : public StringTable
{
public:
    ForwardingStringTable(StringTable& behind, ServiceCalls& calls) : mBehind(behind), mCalls(calls) {}

    std::string text(std::uint32_t number) const override;
    std::string translation(const std::string& key) const override;

private:
    StringTable& mBehind;
    ServiceCalls& mCalls;
};

class ForwardingMessagingSystem : public error::MessagingSystem
{
public:
    ForwardingMessagingSystem(error::MessagingSystem& behind, ServiceCalls& calls)
        : mBehind(behind), mCalls(calls)
    {
    }

    void notify(const char* sourceFile, int line, const error::Trait& trait, int messageNumber,
                const marl::unicode::String& text1, const marl::unicode::String& text2,
                const marl::unicode::String& text3) override;

private:
    error::MessagingSystem& mBehind;
    ServiceCalls& mCalls;
};

class ForwardingApplication : public Application
{
public:
    ForwardingApplication(Application& behind, ServiceCalls& calls) : mBehind(behind), mCalls(calls) {}

    std::string name() const override;
    fileString contentIndexName() const override;

private:
    Application& mBehind;
    ServiceCalls& mCalls;
};

class ForwardingFileSearch : public FileSearch
{
public:
    ForwardingFileSearch(FileSearch& behind, ServiceCalls& calls) : mBehind(behind), mCalls(calls) {}

    void resetFileSearch(const fileString& folder) override;

private:
    FileSearch& mBehind;
    ServiceCalls& mCalls;
};

/// Its failures have the reason "injected failure" and the error number 7 (could not connect).
class ForwardingCurl : public OrvHost::ForwardingCurl
{
public:
    ForwardingCurl(Curl& behind, ServiceCalls& calls) : OrvHost::ForwardingCurl(behind), mCalls(calls) {}

    bool downloadable(const std::string& url) override;
    fileString download(const std::string& url) override;
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) override;
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override;
    void prefetchDownloads(const std::vector<DownloadRequest>& requests) override;
    std::string urlAfterRedirects(const std::string& url) override;

private:
    ServiceCalls& mCalls;
};

/// Wraps every installed service, or its default if none is installed, in a forwarding implementation until
/// the destructor. It wraps an application object only if one is installed.
class ForwardingServices
{
public:
    ForwardingServices();
    ~ForwardingServices();
    ForwardingServices(const ForwardingServices&) = delete;
    ForwardingServices& operator=(const ForwardingServices&) = delete;

    ServiceCalls& calls() { return mCalls; }

private:
    ServiceCalls mCalls;
    ForwardingPathUtils mPaths;
    ForwardingPrefSet mPrefSet;
    PreferenceEngine mPrefs;
    ForwardingStringTable mStrings;
    ForwardingMessagingSystem mMessages;
    ForwardingFileSearch mFileSearch;
    ForwardingCurl mCurl;
    std::unique_ptr<ForwardingApplication> mApplication;

    PathUtils* mFormerPaths;
    PreferenceEngine* mFormerPrefs;
    StringTable* mFormerStrings;
    error::MessagingSystem* mFormerMessages;
    FileSearch* mFormerFileSearch;
    Curl* mFormerCurl;
    Application* mFormerApplication;
};

} // namespace test
