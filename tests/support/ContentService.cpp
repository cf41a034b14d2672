#include "tests/support/ContentService.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QCryptographicHash>
#include <QUrl>
#include <QUrlQuery>

namespace test {

ContentService::ContentService()
{
    mServer.otherwise([this](const FaultRequest& request) { return answer(request); });
}

std::string ContentService::sha1(const std::string& content)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(content), QCryptographicHash::Sha1)
        .toHex()
        .toStdString();
}

void ContentService::offer(const std::string& name, const std::string& content)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mContents[name] = content;
}

void ContentService::spoil(const std::string& name, const FaultReply& reply)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSpoilt.insert_or_assign(name, reply);
}

void ContentService::spoilHeader(const std::string& name, const FaultReply& reply)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSpoiltHeaders.insert_or_assign(name, reply);
}

void ContentService::cutBodies(std::size_t bytes)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mCut = bytes;
}

void ContentService::spoilAll(const FaultReply& reply)
{
    mServer.on("/redirect", reply);
    mServer.otherwise([reply](const FaultRequest&) { return reply; });
}

std::vector<std::string> ContentService::takeFetched()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return std::exchange(mFetched, {});
}

bool ContentService::waitUntilFetched(const std::string& name)
{
    std::unique_lock<std::mutex> lock(mMutex);
    return mChanged.wait_for(lock, std::chrono::seconds(10), [&] {
        return std::find(mFetched.begin(), mFetched.end(), name) != mFetched.end();
    });
}

std::vector<std::string> ContentService::takeAsked()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return std::exchange(mAsked, {});
}

void ContentService::spoilWith(Spoiler spoiler)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSpoiler = std::move(spoiler);
}

FaultReply ContentService::answer(const FaultRequest& request)
{
    const FaultReply sound =
        request.path() == "/redirect" ? FaultReply::redirect("/content?") : reply(request);
    Spoiler spoiler;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        spoiler = mSpoiler;
    }
    return spoiler ? spoiler(sound, request) : sound;
}

FaultReply ContentService::reply(const FaultRequest& request)
{
    if (request.target == request.path())
        return FaultReply::status(404, "Not here.\n");
    const QUrlQuery query(QString::fromStdString(request.target.substr(request.path().size() + 1)));
    const std::string name = query.queryItemValue("library", QUrl::FullyDecoded).toStdString();
    const std::lock_guard<std::mutex> lock(mMutex);
    mAsked.push_back(name);
    const auto content = mContents.find(name);
    if (content == mContents.end())
        return FaultReply::status(404, "Not here.\n");
    const std::string tag = "\"" + sha1(content->second) + "\"";
    if (request.header("If-None-Match") == tag)
        return FaultReply::status(304, {}, {"ETag: " + tag});
    if (request.method == "GET") {
        mFetched.push_back(name);
        mChanged.notify_all();
        const auto spoilt = mSpoilt.find(name);
        if (spoilt != mSpoilt.end())
            return spoilt->second;
        return bodyReply(request, content->second, tag);
    }
    const auto spoilt = mSpoiltHeaders.find(name);
    return spoilt != mSpoiltHeaders.end() ? spoilt->second
                                          : FaultReply::ok(content->second, {"ETag: " + tag});
}

FaultReply ContentService::bodyReply(const FaultRequest& request, const std::string& content,
                                     const std::string& tag) const
{
    const std::string range = request.header("Range");
    const bool isRest = range.rfind("bytes=", 0) == 0 && request.header("If-Range") == tag;
    const std::size_t from = isRest ? std::stoul(range.substr(6)) : 0;
    const std::string size = std::to_string(content.size());
    const std::vector<std::string> headers = {"ETag: " + tag, "Content-Range: bytes " + std::to_string(from) +
                                                                  "-" + std::to_string(content.size() - 1) +
                                                                  "/" + size};
    FaultReply reply = isRest ? FaultReply::status(206, content.substr(from), headers)
                              : FaultReply::ok(content, {"ETag: " + tag});
    const bool isCut = mCut < content.size() - from;
    return isCut ? reply.cutAt(reply.headSize() + mCut) : reply;
}

} // namespace test
