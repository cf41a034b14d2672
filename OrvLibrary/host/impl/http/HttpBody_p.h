#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/BodyDigest_p.h"
#include "OrvLibrary/host/impl/files/DownloadFile_p.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"
#include "OrvLibrary/host/impl/http/ProgressPacer_p.h"
#include "OrvLibrary/host/impl/http/SpeedGuard_p.h"

constexpr std::int64_t kFirstErrorStatus = 400;

/// Receives the body of an answer and decides whether the transfer may go on. A redirect chain uses one
/// object for all its answers and calls `begin` for each of them. Belongs to one thread.
class HttpBody
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    explicit HttpBody(const HttpLimits& limits) : mLimits(limits) {}
    virtual ~HttpBody() = default;
    HttpBody(const HttpBody&) = delete;
    HttpBody& operator=(const HttpBody&) = delete;

    const HttpLimits& limits() const { return mLimits; }
    /// Called with the number of bytes for each header line that arrives.
    virtual void headerReceived(std::size_t) {}
    /// Called when a header block is complete and a body may follow.
    /// @return false to end the transfer
    virtual bool begin(std::int64_t status, const std::string& headerText);
    /// The base class only counts the bytes, which nobody needs. They are read so that the connection can be
    /// used again, unless there are so many that a new connection is cheaper.
    /// @return false to end the transfer
    virtual bool receive(const char* data, std::size_t size);
    /// Called at each step of the transfer loop.
    /// @return why the transfer must end; `CURLE_OK` if it may go on
    virtual CURLcode watch(TimePoint) { return CURLE_OK; }

protected:
    HttpLimits mLimits;

private:
    std::int64_t mDiscarded = 0;
};

/// Keeps a page in memory. If the page is too long, the rest is cut off.
class PageBody : public HttpBody
{
public:
    PageBody(const HttpLimits& limits, std::string& page) : HttpBody(limits), mPage(page) {}

    bool begin(std::int64_t status, const std::string& headerText) override;
    bool receive(const char* data, std::size_t size) override;
    /// Why the page was refused; empty if it was not.
    const std::string& reason() const { return mReason; }

private:
    std::string& mPage;
    std::int64_t mCap = 0;
    std::string mReason;
};

/// Writes a file. An answer of 200 brings the whole file, 206 the missing rest. Other bodies are ignored.
class FileBody : public HttpBody
{
public:
    /// Why a file did not arrive. Without a failure the reason is empty.
    struct Failure
    {
        int error = 0; ///< a number of the transfer library
        std::string reason;
    };

    /// @param partial the partial file, which stays after a failure; if empty, nothing stays
    /// @param progress called with the bytes received; may be null
    FileBody(const HttpLimits& limits, const fileString& target, const fileString& partial = {},
             Curl::ProgressFunction progress = nullptr, void* context = nullptr);

    /// Prepares to continue the partial file.
    /// @param validator identifies the version of the partial file: its entity tag in quotes, or its date
    /// @return the bytes that are there; 0 if the whole file must be requested
    std::int64_t resume(const std::string& validator);
    /// Whether the whole file must be requested, because the answer does not continue the partial file.
    bool mustStartAnew() const { return mMustStartAnew; }

    bool begin(std::int64_t status, const std::string& headerText) override;
    bool receive(const char* data, std::size_t size) override;
    CURLcode watch(TimePoint now) override;
    void headerReceived(std::size_t size) override;

    /// Whether the length and all digests are right. Call it after a transfer without error.
    bool isSound();
    /// Gives the file its name if `isSound`. Makes the last call of the progress function.
    bool complete();
    /// The call for a body that is fetched ahead has come. `progress` is called for the bytes that are there,
    /// then for those that follow.
    /// @param limits those of ordinary downloads, which hold from now on; the free space is measured again
    /// @throws whatever `progress` throws
    void beginTurn(const HttpLimits& limits, Curl::ProgressFunction progress, void* context);
    /// Whether the progress function was called with at least one byte.
    bool isTold() const { return mPacer.toldOfBytes(); }
    /// Whether the progress function has ended the transfer.
    bool isAborted() const { return mPacer.aborted(); }
    /// Frees memory and lets the disk begin to write, for a complete body whose call has not come yet.
    void restAtEnd() { mFile.restAtEnd(); }
    /// Whether the status means that the answer's body is the file, or its rest.
    bool bringsFile() const { return mBringsFile; }
    /// Why the file was refused or could not be written.
    const Failure& failure() const { return mFailure; }

private:
    bool fail(const std::string& reason, CURLcode error = CURLE_WEIRD_SERVER_REPLY);
    bool failOnDisk(const std::string& reason) { return fail(reason, CURLE_WRITE_ERROR); }
    bool beginWhole(const WebUtils::HeaderMap& headers);
    bool beginRest(const WebUtils::HeaderMap& headers);
    bool digestEarlier();
    bool checkSize(std::int64_t size);

    host::DownloadFile mFile;
    ProgressPacer mPacer;
    SpeedGuard mSpeed;
    std::unique_ptr<host::BodyDigest> mDigest;
    /// Identifies the version of the partial file. Empty if the whole file is requested.
    std::string mValidator;
    bool mMustStartAnew = false;
    bool mBringsFile = false;
    /// The announced length of the whole file; -1 if unknown.
    std::int64_t mLength = -1;
    host::SizeLimit mLimit;
    Failure mFailure;
};
