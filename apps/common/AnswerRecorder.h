#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "OrvLibrary/host/Curl.h"

/// A download service that hands everything on to another one and remembers what each catalog was answered.
/// Install it for the length of one run. May be used from any thread.
class AnswerRecorder : public Curl
{
public:
    /// @param next not owned
    explicit AnswerRecorder(Curl& next) : mNext(next) {}

    bool downloadable(const std::string& url) override { return mNext.downloadable(url); }
    fileString download(const std::string& url) override { return mNext.download(url); }
    bool download_to_location(const std::string& url, const fileString& target, std::string& reason) override;
    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override;
    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;
    bool browseURL(const std::string& url, const std::vector<std::string>& headerLines, std::string& body,
                   bool followRedirects, int timeoutSeconds) override;
    void prefetchHeaders(const std::vector<HeaderRequest>& requests) override
    {
        mNext.prefetchHeaders(requests);
    }
    std::string urlAfterRedirects(const std::string& url) override { return mNext.urlAfterRedirects(url); }

    /// Catalog name, as it was asked for, to HTTP status; 0 where there was no answer.
    std::map<std::string, std::int64_t> answers() const;

private:
    Curl& mNext;
    mutable std::mutex mMutex;
    std::map<std::string, std::int64_t> mAnswers; ///< guarded by mMutex
};
