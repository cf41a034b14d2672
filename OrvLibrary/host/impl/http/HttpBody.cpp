// How it works: `HttpBody` counts bytes and drops them, `PageBody` keeps them in memory, `FileBody` writes
// them to a file. In `FileBody`, `begin` reads the header (length, range, encoding, digests) and measures the
// free space. `receive` checks the size, writes and hashes the bytes, and calls the progress function.
// `complete` compares the length and the digests, then renames the file. Each refusal is kept in `failure`.
#include "OrvLibrary/host/impl/http/HttpBody_p.h"

#include <algorithm>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/text/HttpHeaders_p.h"

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kPartialContent = 206;
constexpr std::int64_t kRangeNotSatisfiable = 416;

} // namespace

bool HttpBody::begin(std::int64_t, const std::string&)
{
    mDiscarded = 0;
    return true;
}

bool HttpBody::receive(const char*, std::size_t size)
{
    mDiscarded += static_cast<std::int64_t>(size);
    return mDiscarded <= mLimits.errorPageBytes;
}

bool PageBody::begin(std::int64_t status, const std::string& headerText)
{
    mPage.clear();
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    mReason = HttpHeaders::encodingProblem(headers);
    if (!mReason.empty())
        return false;
    mCap = status >= kFirstErrorStatus ? mLimits.errorPageBytes : mLimits.pageBytes;
    return HttpBody::begin(status, headerText);
}

bool PageBody::receive(const char* data, std::size_t size)
{
    const auto room = static_cast<std::size_t>(mCap) - mPage.size();
    mPage.append(data, std::min(size, room));
    return size <= room;
}

FileBody::FileBody(const HttpLimits& limits, const fileString& target, const fileString& partial,
                   Curl::ProgressFunction progress, void* context)
    : HttpBody(limits),
      mFile(target, partial),
      mPacer(mLimits, progress, context, HttpLimits::Clock::now()),
      mSpeed(mLimits, HttpLimits::Clock::now())
{
}

std::int64_t FileBody::resume(const std::string& validator)
{
    std::string reason;
    const bool isReady = mFile.resume(reason) || failOnDisk(reason);
    // With a weak tag the bytes may differ, so they cannot be continued.
    if (validator.empty() || validator.compare(0, 2, "W/") == 0 || !isReady || mFile.size() == 0)
        return 0;
    mValidator = validator;
    return mFile.size();
}

bool FileBody::fail(const std::string& reason, CURLcode error)
{
    mFailure = {error, reason};
    return false;
}

bool FileBody::checkSize(std::int64_t size)
{
    if (mLimit.allows(size))
        return true;
    const std::string reason = mLimit.reason(size - mFile.size());
    return mLimit.isFromDisk() ? failOnDisk(reason) : fail(reason);
}

bool FileBody::begin(std::int64_t status, const std::string& headerText)
{
    const bool isRest = !mValidator.empty() && status == kPartialContent;
    mBringsFile = status == kOk || isRest;
    mMustStartAnew = !mValidator.empty() && status == kRangeNotSatisfiable;
    if (!mBringsFile)
        return HttpBody::begin(status, headerText);
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    const std::string problem = HttpHeaders::encodingProblem(headers);
    if (!problem.empty())
        return fail(problem);
    mDigest = std::make_unique<host::BodyDigest>(headers);
    if (!(isRest ? beginRest(headers) : beginWhole(headers)))
        return false;
    mPacer.setTotal(std::max<std::int64_t>(mLength, 0));
    mLimit = mFile.limit(mLimits.fileBytes, mLimits.spare);
    return checkSize(mLength);
}

/// The answer brings the whole file. It replaces the bytes that were there.
bool FileBody::beginWhole(const WebUtils::HeaderMap& headers)
{
    mLength = HttpHeaders::contentLength(headers);
    std::string reason;
    return mFile.open(reason) || failOnDisk(reason);
}

/// The answer brings the bytes that follow the partial file.
bool FileBody::beginRest(const WebUtils::HeaderMap& headers)
{
    mLength = HttpHeaders::lengthOfRest(headers, mFile.size());
    mMustStartAnew = mLength < 0 || !HttpHeaders::isOfVersion(headers, mValidator);
    if (mMustStartAnew)
        return fail("the answer does not go on where the partial file ends");
    mPacer.startAt(mFile.size());
    return digestEarlier();
}

bool FileBody::digestEarlier()
{
    std::string reason;
    const auto digest = [&](const char* data, std::size_t size) {
        mDigest->updateEarlier(data, size);
        return !CancelQuestion::isCancelled();
    };
    if (!mDigest->isWanted() || mFile.read(digest, reason))
        return true;
    return reason.empty() ? fail("Callback aborted", CURLE_ABORTED_BY_CALLBACK) : failOnDisk(reason);
}

void FileBody::beginTurn(const HttpLimits& limits, Curl::ProgressFunction progress, void* context)
{
    mLimits = limits;
    if (mFile.isOpen())
        mLimit = mFile.limit(mLimits.fileBytes, mLimits.spare);
    mPacer.attach(progress, context, HttpLimits::Clock::now());
}

void FileBody::headerReceived(std::size_t size)
{
    mSpeed.received(static_cast<std::int64_t>(size));
}

bool FileBody::receive(const char* data, std::size_t size)
{
    if (!mBringsFile)
        return HttpBody::receive(data, size);
    const auto bytes = static_cast<std::int64_t>(size);
    if (!checkSize(mFile.size() + bytes))
        return false;
    std::string reason;
    if (!mFile.write(data, size, reason))
        return failOnDisk(reason);
    mDigest->update(data, size);
    mSpeed.received(bytes);
    return mPacer.received(bytes, HttpLimits::Clock::now());
}

CURLcode FileBody::watch(TimePoint now)
{
    if (!mPacer.tick(now))
        return CURLE_ABORTED_BY_CALLBACK;
    // A progress function may end a slow transfer itself, so no speed limit applies.
    return !mPacer.wanted() && mSpeed.tooSlow(now) ? CURLE_OPERATION_TIMEDOUT : CURLE_OK;
}

bool FileBody::isSound()
{
    if (mLength >= 0 && mFile.size() != mLength)
        return fail("length differs from Content-Length");
    return mDigest->matches() || fail("digest mismatch");
}

bool FileBody::complete()
{
    if (!isSound()) {
        mFile.discard();
        return false;
    }
    if (!mPacer.callAtEnd(HttpLimits::Clock::now()))
        return false;
    std::string reason;
    return mFile.commit(reason) || failOnDisk(reason);
}
