#pragma once

#include <set>
#include <string>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "fuzz/UpdateScript.h"

namespace fuzz {

/// The base of both download services of a run. It checks that the updater keeps the contract and records
/// what the updater received.
class CheckingService : public Curl
{
public:
    bool downloadable(const std::string&) override { return false; }
    fileString download(const std::string&) override { return {}; }
    bool download_to_location(const std::string&, const fileString&, std::string&) override { return false; }
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) final;
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) final;
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) final;
    std::string urlAfterRedirects(const std::string& url) final;

    /// The bodies of the successful downloads, and the names in their requests.
    std::set<std::string> bodies;
    std::set<std::string> deliveredNames;
    /// The tags of all header responses.
    std::set<std::string> tags;
    /// The number of requests of all kinds so far.
    unsigned long requests = 0;

protected:
    /// The parameters of a download after the checks.
    struct Transfer
    {
        const fileString& target;
        void* context;
        ProgressFunction progress;
        std::string& reason;
        int& errorNumber;
    };

    virtual std::string endpoint() = 0;
    virtual bool answerHeader(const std::string& name, const std::string& tag, std::string& headerText,
                              std::int64_t& status) = 0;
    /// @param body set if the download succeeds
    virtual bool transfer(const std::string& name, const Transfer& transfer, std::string& body) = 0;
    virtual bool answerPage(const std::string& name, std::string& body) = 0;
    virtual void atRequest() {}

    /// Writes a file as the real service would. Fails for impossible names.
    static bool writeTarget(const fileString& target, const std::string& body);

private:
    void note();
    std::string nameIn(const std::string& url);

    std::string mEndpoint;
};

/// Replies from a script.
class ScriptedService : public CheckingService
{
public:
    explicit ScriptedService(UpdateScript& script) : mScript(script) {}

    bool isCancelled() const { return mIsCancelled; }

protected:
    std::string endpoint() override { return mScript.endpoint; }
    bool answerHeader(const std::string& name, const std::string& tag, std::string& headerText,
                      std::int64_t& status) override;
    bool transfer(const std::string& name, const Transfer& transfer, std::string& body) override;
    bool answerPage(const std::string& name, std::string& body) override;
    void atRequest() override;

private:
    UpdateScript& mScript;
    bool mIsCancelled = false;
    bool mHasServedIndex = false;
};

/// A sound service with a few files.
class CleanService : public CheckingService
{
public:
    /// Tags of a script must not start like this.
    static const char kTagStart[];
    /// The content of the catalog with this name.
    static std::string bodyOf(const std::string& name);
    static std::string tagOf(const std::string& name) { return kTagStart + name; }
    static const std::set<std::string>& names();

protected:
    std::string endpoint() override { return "http://clean.test/?a=1"; }
    bool answerHeader(const std::string& name, const std::string& tag, std::string& headerText,
                      std::int64_t& status) override;
    bool transfer(const std::string& name, const Transfer& transfer, std::string& body) override;
    bool answerPage(const std::string& name, std::string& body) override;
};

/// Preferences in memory.
class MemoryPrefs : public PrefSet
{
public:
    Pref getPref(int id) const override;
    void setPref(int id, const PrefValue& value) override { mValues[id] = value; }
    bool hasPref(int) const override { return true; }

private:
    std::map<int, PrefValue> mValues;
};

} // namespace fuzz
