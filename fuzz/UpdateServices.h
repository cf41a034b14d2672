#pragma once

#include <set>
#include <string>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "fuzz/UpdateScript.h"

namespace fuzz {

/// What both download services of a run have in common: they see to it that the updater keeps to its own side
/// of the contract, and remember what they handed out.
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

    /// The bodies of the downloads that went well, and the names that they were asked for by.
    std::set<std::string> bodies;
    std::set<std::string> deliveredNames;
    /// The tags of all header answers.
    std::set<std::string> tags;
    /// Requests of all kinds so far.
    unsigned long requests = 0;

protected:
    /// How one download goes on behind the checks.
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
    /// @param body filled when the download goes well
    virtual bool transfer(const std::string& name, const Transfer& transfer, std::string& body) = 0;
    virtual bool answerPage(const std::string& name, std::string& body) = 0;
    virtual void atRequest() {}

    /// Writes a file as the real service would: never to a name that cannot be.
    static bool writeTarget(const fileString& target, const std::string& body);

private:
    void note();
    std::string nameIn(const std::string& url);

    std::string mEndpoint;
};

/// Answers from a script.
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

/// A service that works, with a few files of its own.
class CleanService : public CheckingService
{
public:
    /// No tag of a script may start like this.
    static const char kTagStart[];
    /// A catalog by the name that it is asked for by.
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

/// Preferences that end with the process.
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
