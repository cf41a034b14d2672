#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/http/BodyDigest_p.h"
#include "OrvLibrary/host/impl/http/DownloadFile_p.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"
#include "OrvLibrary/host/impl/http/ProgressPacer_p.h"
#include "OrvLibrary/host/impl/http/SpeedGuard_p.h"

/// Takes the body of an answer, and watches over the transfer while it runs. One object serves all answers of
/// a redirect chain: each begins anew. Belongs to one thread.
class HttpBody
{
public:
    using TimePoint = HttpLimits::Clock::time_point;
    enum class Verdict
    {
        GoOn,
        Aborted,
        TooSlow
    };

    explicit HttpBody(const HttpLimits& limits) : mLimits(limits) {}
    virtual ~HttpBody() = default;
    HttpBody(const HttpBody&) = delete;
    HttpBody& operator=(const HttpBody&) = delete;

    /// So many bytes of an answer's header came.
    virtual void headerReceived(std::size_t) {}
    /// A header block is complete and a body may follow.
    /// @return false to end the transfer here
    virtual bool begin(std::int64_t status, const std::string& headerText);
    /// @return false to end the transfer here
    virtual bool take(const char* data, std::size_t size);
    /// Asked all the time while the transfer runs.
    virtual Verdict watch(TimePoint now);

protected:
    /// Counts bytes nobody wants; false once enough of them were read.
    bool discard(std::size_t size);

    const HttpLimits& mLimits;

private:
    std::int64_t mDiscarded = 0;
};

/// Keeps a page in memory. One that is too long is cut.
class PageBody : public HttpBody
{
public:
    PageBody(const HttpLimits& limits, std::string& page) : HttpBody(limits), mPage(page) {}

    bool begin(std::int64_t status, const std::string& headerText) override;
    bool take(const char* data, std::size_t size) override;
    /// Why the page was not taken; empty when it was.
    const std::string& reason() const { return mReason; }

private:
    std::string& mPage;
    std::int64_t mCap = 0;
    std::string mReason;
};

/// Writes the body of a 200 to a file, or the rest of a body that a 206 brings; other bodies are passed over.
class FileBody : public HttpBody
{
public:
    /// @param partial where the file grows and stays after a failure; empty when it does not
    FileBody(const HttpLimits& limits, const fileString& target, ProgressPacer& pacer, TimePoint start,
             const fileString& partial = {});

    /// Prepares for an answer that goes on where the partial file ends.
    /// @param validator entity tag in quotes, or date, of the version that the partial file is of
    /// @return how many bytes there are; 0 when the file must be asked for from its first byte
    std::int64_t resume(const std::string& validator);
    /// The answer does not go on where the partial file ends: the file is to be asked for from its first
    /// byte.
    bool mustStartAnew() const { return mMustStartAnew; }

    bool begin(std::int64_t status, const std::string& headerText) override;
    bool take(const char* data, std::size_t size) override;
    Verdict watch(TimePoint now) override;
    void headerReceived(std::size_t size) override;

    /// The transfer ended without an error: whether length and digest are as announced.
    bool isSound();
    /// The same, and gives the file its name.
    bool finish();
    /// To be called when the limits have changed while the body came.
    void limitsChanged();
    /// The body has arrived, and its turn has not come: lets go of memory and lets the disk begin.
    void restAtEnd() { mFile.restAtEnd(); }
    /// Whether the answer brought what was asked for, so far as its header says.
    bool isTaken() const { return mIsTaken; }
    /// Bytes of the file so far.
    std::int64_t size() const { return mFile.size(); }
    /// Why the file could not be written; empty when it could.
    const std::string& reason() const { return mReason; }
    /// Whether the reason is of the disk, not of what the server sent.
    bool diskFailed() const { return mDiskFailed; }

private:
    bool fail(const std::string& reason);
    bool failOnDisk(const std::string& reason);
    bool beginWhole(const WebUtils::HeaderMap& headers);
    bool beginRest(const WebUtils::HeaderMap& headers);
    bool digestEarlier();
    void measureRoom();
    bool checkRoom(std::int64_t size);

    DownloadFile mFile;
    ProgressPacer& mPacer;
    SpeedGuard mSpeed;
    std::unique_ptr<BodyDigest> mDigest;
    /// Of the version that the partial file is of; empty when the file is asked for from its first byte.
    std::string mValidator;
    bool mMustStartAnew = false;
    bool mIsTaken = false;
    /// Of the whole file, as announced; -1 when it was not.
    std::int64_t mLength = -1;
    std::int64_t mCap = 0;
    bool mCapIsDisk = false;
    /// Free on the disk when the body began, and to be kept free.
    std::int64_t mFree = 0;
    std::int64_t mKept = 0;
    bool mDiskFailed = false;
    std::optional<bool> mIsSound;
    std::string mReason;
};
