#include "OrvLibrary/host/impl/http/HttpBody_p.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kFirstErrorStatus = 400;

/// The announced length of a body; -1 when there is none that can be read.
std::int64_t contentLength(const WebUtils::HeaderMap& headers)
{
    const auto found = headers.find("Content-Length");
    if (found == headers.end())
        return -1;
    const std::string& text = found->second.back();
    std::int64_t length = -1;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), length);
    const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return isWhole && length >= 0 ? length : -1;
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
    mCap = status >= kFirstErrorStatus ? mLimits.errorPageBytes : mLimits.pageBytes;
    return HttpBody::begin(status, headerText);
}

bool PageBody::take(const char* data, std::size_t size)
{
    const auto room = static_cast<std::size_t>(mCap) - mPage.size();
    mPage.append(data, std::min(size, room));
    return size <= room;
}

FileBody::FileBody(const HttpLimits& limits, const fileString& target, ProgressPacer& pacer, TimePoint start)
    : HttpBody(limits), mFile(target), mPacer(pacer), mSpeed(limits, start)
{
}

bool FileBody::fail(const std::string& reason)
{
    mReason = reason;
    return false;
}

bool FileBody::failOnDisk(const std::string& reason)
{
    mDiskFailed = true;
    return fail(reason);
}

bool FileBody::checkRoom(std::int64_t size)
{
    if (size <= mCap)
        return true;
    return mCapIsDisk ? failOnDisk("write error: No space left on device") : fail("file too large");
}

bool FileBody::begin(std::int64_t status, const std::string& headerText)
{
    mStatus = status;
    if (status != kOk)
        return HttpBody::begin(status, headerText);
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    mDigest = std::make_unique<BodyDigest>(headers);
    mLength = contentLength(headers);
    mPacer.setTotal(std::max<std::int64_t>(mLength, 0));
    std::string reason;
    if (!mFile.open(reason))
        return failOnDisk(reason);
    measureRoom();
    return checkRoom(mLength);
}

/// How large the file may become, with what is already written.
void FileBody::measureRoom()
{
    const std::int64_t free = mFile.freeBytes();
    const std::int64_t room = mFile.size() + free - mLimits.spareBytes;
    mCapIsDisk = free >= 0 && room < mLimits.fileBytes;
    mCap = mCapIsDisk ? std::max<std::int64_t>(room, 0) : mLimits.fileBytes;
}

void FileBody::limitsChanged()
{
    if (mFile.isOpen())
        measureRoom();
}

void FileBody::headerReceived(std::size_t size)
{
    mSpeed.received(static_cast<std::int64_t>(size));
}

bool FileBody::take(const char* data, std::size_t size)
{
    if (mStatus != kOk)
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
    // With a progress function it is that one's business when a transfer has lasted too long.
    return !mPacer.wanted() && mSpeed.tooSlow(now) ? Verdict::TooSlow : Verdict::GoOn;
}

bool FileBody::isSound()
{
    if (!mIsSound) {
        if (mLength >= 0 && mFile.size() != mLength)
            mIsSound = fail("length differs from Content-Length");
        else
            mIsSound = mDigest->matches() || fail("digest mismatch");
    }
    return *mIsSound;
}

bool FileBody::finish()
{
    if (!isSound())
        return false;
    if (!mPacer.finish(HttpLimits::Clock::now()))
        return false;
    std::string reason;
    return mFile.commit(reason) || failOnDisk(reason);
}
