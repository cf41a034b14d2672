#include "tests/support/ContentService.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QCryptographicHash>
#include <QUrl>
#include <QUrlQuery>

#include "tests/support/BrokenService.h"

namespace test {

ContentService::ContentService()
{
    mServer.on(kLoginPath, loginPage());
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

void ContentService::cutBodiesInTurn(const std::vector<std::size_t>& places)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mCutsInTurn = places;
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
    FaultReply sound = FaultReply::file(request, content->second, "\"" + sha1(content->second) + "\"");
    if (sound.isStatus(304))
        return sound;
    if (request.method == "GET") {
        mFetched.push_back(name);
        mChanged.notify_all();
        const auto spoilt = mSpoilt.find(name);
        if (spoilt != mSpoilt.end())
            return spoilt->second;
        std::size_t cut = mCut;
        if (!mCutsInTurn.empty()) {
            cut = mCutsInTurn.front();
            mCutsInTurn.erase(mCutsInTurn.begin());
        }
        return cut < sound.body().size() ? sound.cutBodyAt(cut) : sound;
    }
    const auto spoilt = mSpoiltHeaders.find(name);
    return spoilt != mSpoiltHeaders.end() ? spoilt->second : sound;
}

} // namespace test
