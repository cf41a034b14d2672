#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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
    /// Why a file did not arrive. Without a reason there is no failure.
    struct Failure
    {
        std::string reason;
        int error = 0; ///< as of the transfer library
    };

    /// @param partial where the file grows and stays after a failure; empty when it does not
    /// @param progress hears of the bytes; may be null
    FileBody(const HttpLimits& limits, const fileString& target, const fileString& partial = {},
             Curl::ProgressFunction progress = nullptr, void* context = nullptr);

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
    /// The call for a body that is fetched ahead of it has come. `progress` hears of what is there and of
    /// what comes. The disk is measured again, because the limits are those of ordinary downloads from now
    /// on.
    /// @throws what `progress` throws
    void beginTurn(Curl::ProgressFunction progress, void* context);
    /// Whether the progress function was told of any byte.
    bool isTold() const { return mPacer.toldOfBytes(); }
    /// Whether the progress function has ended the transfer.
    bool isAborted() const { return mPacer.aborted(); }
    /// Releases memory and lets the disk begin to write. For a body that has arrived before its turn.
    void restAtEnd() { mFile.restAtEnd(); }
    /// Whether the answer brought what was asked for, so far as its header says.
    bool isTaken() const { return mIsTaken; }
    /// Why the file was refused or could not be written.
    const Failure& failure() const { return mFailure; }

private:
    /// How large the file may become, with what is already written.
    struct Room
    {
        std::int64_t cap = 0;
        bool isDisks = false; ///< whether the disk sets the bound
        std::int64_t free = 0;
        std::int64_t kept = 0; ///< to be kept free
    };

    bool fail(const std::string& reason);
    bool failOnDisk(const std::string& reason);
    bool beginWhole(const WebUtils::HeaderMap& headers);
    bool beginRest(const WebUtils::HeaderMap& headers);
    bool digestEarlier();
    void measureRoom();
    bool checkRoom(std::int64_t size);

    DownloadFile mFile;
    ProgressPacer mPacer;
    SpeedGuard mSpeed;
    std::unique_ptr<BodyDigest> mDigest;
    /// Of the version that the partial file is of; empty when the file is asked for from its first byte.
    std::string mValidator;
    bool mMustStartAnew = false;
    bool mIsTaken = false;
    /// Of the whole file, as announced; -1 when it was not.
    std::int64_t mLength = -1;
    Room mRoom;
    Failure mFailure;
};
