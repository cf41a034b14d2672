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
/// a redirect chain, which call `begin` one after the other. Belongs to one thread.
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

    const HttpLimits& limits() const { return mLimits; }
    /// Called with the number of bytes when a piece of an answer's header has come.
    virtual void headerReceived(std::size_t) {}
    /// A header block is complete and a body may follow.
    /// @return false to end the transfer here
    virtual bool begin(std::int64_t status, const std::string& headerText);
    /// @return false to end the transfer here
    virtual bool take(const char* data, std::size_t size);
    /// Called at each step of the transfer loop. Says whether the transfer may go on.
    virtual Verdict watch(TimePoint now);

protected:
    /// Counts bytes that are not kept. False once more came than are worth reading to keep the connection.
    bool discard(std::size_t size);

    const HttpLimits& mLimits;

private:
    std::int64_t mDiscarded = 0;
};

/// Keeps a page in memory. A page that is too long is cut.
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
    /// Whether the file must be asked for from its first byte, because the answer did not go on where the
    /// partial file ends.
    bool mustStartAnew() const { return mMustStartAnew; }

    bool begin(std::int64_t status, const std::string& headerText) override;
    bool take(const char* data, std::size_t size) override;
    Verdict watch(TimePoint now) override;
    void headerReceived(std::size_t size) override;

    /// Whether length and digest are as announced. To be asked when the transfer has ended without an error.
    bool isSound();
    /// Gives the file its name if it is sound.
    bool finish();
    /// Measures the disk again. To be called when the limits have changed while the body came.
    void limitsChanged();
    /// Releases memory and lets the disk begin to write. For a body that has arrived before its turn.
    void restAtEnd() { mFile.restAtEnd(); }
    /// Whether the answer brought what was asked for, so far as its header says.
    bool isTaken() const { return mIsTaken; }
    /// Bytes of the file so far.
    std::int64_t size() const { return mFile.size(); }
    /// Why the file could not be written; empty when it could.
    const std::string& reason() const { return mReason; }
    /// Whether the reason lies with the disk, not with the bytes that the server sent.
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
