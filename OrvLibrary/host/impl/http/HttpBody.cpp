// How it works: `HttpBody` counts and drops what comes, `PageBody` keeps it in memory, `FileBody` writes a
// file. `begin` reads the header (length, range, encoding, digests) and measures the disk. `take` checks the
// room, writes, hashes, and tells the progress function. `finish` compares length and digests and gives the
// file its name. Each refusal is kept as a failure with its reason and number.
#include "OrvLibrary/host/impl/http/HttpBody_p.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kPartialContent = 206;
constexpr std::int64_t kRangeNotSatisfiable = 416;
constexpr std::int64_t kFirstErrorStatus = 400;

/// The last value of a header; null when there is none.
const std::string* lastValue(const WebUtils::HeaderMap& headers, const char* name)
{
    const auto found = headers.find(name);
    return found == headers.end() ? nullptr : &found->second.back();
}

/// Takes a number off the front of a text.
bool takeNumber(const char*& at, const char* end, std::int64_t& number)
{
    const auto result = std::from_chars(at, end, number);
    at = result.ptr;
    return result.ec == std::errc() && number >= 0;
}

/// The announced length of a body; -1 when there is none that can be read.
std::int64_t contentLength(const WebUtils::HeaderMap& headers)
{
    const std::string* const text = lastValue(headers, "Content-Length");
    if (!text)
        return -1;
    const char* at = text->data();
    const char* const end = at + text->size();
    std::int64_t length = -1;
    return takeNumber(at, end, length) && at == end ? length : -1;
}

/// The length of the whole file when the answer brings everything from byte `from` on; -1 otherwise.
std::int64_t lengthOfRest(const WebUtils::HeaderMap& headers, std::int64_t from)
{
    const std::string* const text = lastValue(headers, "Content-Range");
    if (!text || text->compare(0, 6, "bytes ") != 0)
        return -1;
    const char* at = text->data() + 6;
    const char* const end = text->data() + text->size();
    std::int64_t first = -1;
    std::int64_t last = -1;
    std::int64_t length = -1;
    const bool isWell = takeNumber(at, end, first) && at != end && *at++ == '-' &&
                        takeNumber(at, end, last) && at != end && *at++ == '/' &&
                        takeNumber(at, end, length) && at == end;
    return isWell && first == from && last + 1 == length ? length : -1;
}

/// Whether nothing in the answer says that it is of another version than the validator's.
bool isOfVersion(const WebUtils::HeaderMap& headers, const std::string& validator)
{
    const bool isTag = validator.front() == '"';
    const std::string* const own = lastValue(headers, isTag ? "ETag" : "Last-Modified");
    return !own || *own == validator;
}

/// Why a body cannot be stored: what would be stored is not what the tag belongs to. Empty when it can be.
std::string encodingProblem(const WebUtils::HeaderMap& headers)
{
    const auto found = headers.find("Content-Encoding");
    if (found == headers.end())
        return {};
    for (const std::string& value : found->second) {
        std::string name = value;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
        if (!name.empty() && name != "identity")
            return "the body is encoded (Content-Encoding: " + value + ")";
    }
    return {};
}

/// A size for a sentence, rounded up to a unit of 1000.
std::string sizeText(std::int64_t bytes)
{
    const char* const units[] = {" bytes", " KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < std::size(units); ++unit)
        bytes = (bytes + 999) / 1000;
    return std::to_string(bytes) + units[unit];
}

} // namespace

bool HttpBody::begin(std::int64_t, const std::string&)
{
    mDiscarded = 0;
    return true;
}

bool HttpBody::take(const char*, std::size_t size)
{
    return discard(size);
}

HttpBody::Verdict HttpBody::watch(TimePoint)
{
    return Verdict::GoOn;
}

bool HttpBody::discard(std::size_t size)
{
    mDiscarded += static_cast<std::int64_t>(size);
    return mDiscarded <= mLimits.errorPageBytes;
}

bool PageBody::begin(std::int64_t status, const std::string& headerText)
{
    mPage.clear();
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    mReason = encodingProblem(headers);
    if (!mReason.empty())
        return false;
    mCap = status >= kFirstErrorStatus ? mLimits.errorPageBytes : mLimits.pageBytes;
    return HttpBody::begin(status, headerText);
}

bool PageBody::take(const char* data, std::size_t size)
{
    const auto room = static_cast<std::size_t>(mCap) - mPage.size();
    mPage.append(data, std::min(size, room));
    return size <= room;
}

FileBody::FileBody(const HttpLimits& limits, const fileString& target, const fileString& partial,
                   Curl::ProgressFunction progress, void* context)
    : HttpBody(limits),
      mFile(target, partial),
      mPacer(limits, progress, context, HttpLimits::Clock::now()),
      mSpeed(limits, HttpLimits::Clock::now())
{
}

std::int64_t FileBody::resume(const std::string& validator)
{
    std::string reason;
    const bool isReady = mFile.resume(reason) || failOnDisk(reason);
    // A weak tag does not say that the bytes are the same.
    if (validator.empty() || validator.compare(0, 2, "W/") == 0 || !isReady || mFile.size() == 0)
        return 0;
    mValidator = validator;
    return mFile.size();
}

bool FileBody::fail(const std::string& reason)
{
    mFailure = {reason, CURLE_WEIRD_SERVER_REPLY};
    return false;
}

bool FileBody::failOnDisk(const std::string& reason)
{
    mFailure = {reason, CURLE_WRITE_ERROR};
    return false;
}

bool FileBody::checkRoom(std::int64_t size)
{
    if (size <= mRoom.cap)
        return true;
    if (!mRoom.isDisks)
        return fail("file too large");
    return failOnDisk("disk full: " + sizeText(size - mFile.size()) + " needed, " + sizeText(mRoom.free) +
                      " free, " + sizeText(mRoom.kept) + " kept free");
}

bool FileBody::begin(std::int64_t status, const std::string& headerText)
{
    const bool isRest = !mValidator.empty() && status == kPartialContent;
    mIsTaken = status == kOk || isRest;
    mMustStartAnew = !mValidator.empty() && status == kRangeNotSatisfiable;
    if (!mIsTaken)
        return HttpBody::begin(status, headerText);
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    const std::string problem = encodingProblem(headers);
    if (!problem.empty())
        return fail(problem);
    mDigest = std::make_unique<BodyDigest>(headers);
    if (!(isRest ? beginRest(headers) : beginWhole(headers)))
        return false;
    mPacer.setTotal(std::max<std::int64_t>(mLength, 0));
    measureRoom();
    return checkRoom(mLength);
}

/// The answer brings the whole file, which takes the place of what was there.
bool FileBody::beginWhole(const WebUtils::HeaderMap& headers)
{
    mLength = contentLength(headers);
    std::string reason;
    return mFile.open(reason) || failOnDisk(reason);
}

/// The answer brings the bytes that follow those of the partial file.
bool FileBody::beginRest(const WebUtils::HeaderMap& headers)
{
    mLength = lengthOfRest(headers, mFile.size());
    mMustStartAnew = mLength < 0 || !isOfVersion(headers, mValidator);
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
    return reason.empty() ? fail("Callback aborted") : failOnDisk(reason);
}

void FileBody::measureRoom()
{
    const DownloadFile::Room disk = mFile.room();
    mRoom.free = disk.free;
    mRoom.kept = std::min(mLimits.spareBytes, disk.whole / mLimits.spareShare) + mLimits.spareForOthers;
    const std::int64_t size = std::max<std::int64_t>(mFile.size() + mRoom.free - mRoom.kept, 0);
    mRoom.isDisks = disk.free >= 0 && size < mLimits.fileBytes;
    mRoom.cap = mRoom.isDisks ? size : mLimits.fileBytes;
}

void FileBody::beginTurn(Curl::ProgressFunction progress, void* context)
{
    if (mFile.isOpen())
        measureRoom();
    mPacer.attach(progress, context, HttpLimits::Clock::now());
}

void FileBody::headerReceived(std::size_t size)
{
    mSpeed.received(static_cast<std::int64_t>(size));
}

bool FileBody::take(const char* data, std::size_t size)
{
    if (!mIsTaken)
        return discard(size);
    const auto bytes = static_cast<std::int64_t>(size);
    if (!checkRoom(mFile.size() + bytes))
        return false;
    std::string reason;
    if (!mFile.write(data, size, reason))
        return failOnDisk(reason);
    mDigest->update(data, size);
    mSpeed.received(bytes);
    return mPacer.received(bytes, HttpLimits::Clock::now());
}

HttpBody::Verdict FileBody::watch(TimePoint now)
{
    if (!mPacer.tick(now))
        return Verdict::Aborted;
    // A progress function decides itself when a transfer has lasted too long.
    return !mPacer.wanted() && mSpeed.tooSlow(now) ? Verdict::TooSlow : Verdict::GoOn;
}

bool FileBody::isSound()
{
    if (mLength >= 0 && mFile.size() != mLength)
        return fail("length differs from Content-Length");
    return mDigest->matches() || fail("digest mismatch");
}

bool FileBody::finish()
{
    if (!isSound()) {
        mFile.discard();
        return false;
    }
    if (!mPacer.finish(HttpLimits::Clock::now()))
        return false;
    std::string reason;
    return mFile.commit(reason) || failOnDisk(reason);
}
