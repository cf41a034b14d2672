#include "tests/update-sweeps/UpdateWorld.h"

#include <filesystem>
#include <sstream>

#include <QCoreApplication>
#include <QCryptographicHash>

#include "tests/support/ArchiveBuilder.h"

namespace fs = std::filesystem;

namespace test {

namespace {

const char kIndex[] = "Orv_Core_Content_Index.txt";
const char kGone[] = "Gone.orvlib";
const char kSpoiltCatalog[] = "Doors.orvlib";
const char kSpoiltArchive[] = "Lamps.orvlibz";

std::string sha1(const std::string& content)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(content), QCryptographicHash::Sha1)
        .toHex()
        .toStdString();
}

std::string decoded(const std::string& text)
{
    return QByteArray::fromPercentEncoding(QByteArray::fromStdString(text)).toStdString();
}

std::string libraryOf(const std::string& target)
{
    const std::string key = "&library=";
    const std::size_t start = target.find(key);
    if (start == std::string::npos)
        return {};
    const std::size_t from = start + key.size();
    return decoded(target.substr(from, target.find("&product=", from) - from));
}

RequestKind kindOf(const FaultRequest& request)
{
    if (request.path() == "/redirect")
        return RequestKind::Redirect;
    const std::string name = libraryOf(request.target);
    if (name == kIndex)
        return RequestKind::Index;
    if (request.method == "HEAD")
        return name == kSpoiltCatalog ? RequestKind::Header : RequestKind::Other;
    if (name == kGone)
        return RequestKind::Page;
    if (name == kSpoiltArchive)
        return RequestKind::Archive;
    return name == kSpoiltCatalog ? RequestKind::Body : RequestKind::Other;
}

std::string packed(const std::string& database, const std::string& texture)
{
    ArchiveBuilder builder;
    builder.add("inside.orvlib", database);
    builder.add("brass.png", texture);
    return builder.bytes();
}

HttpLimits shortLimits()
{
    HttpLimits limits;
    limits.connectTimeout = std::chrono::milliseconds(150);
    limits.totalTimeout = std::chrono::milliseconds(150);
    limits.progressSilence = std::chrono::milliseconds(20);
    limits.progressInterval = std::chrono::milliseconds(1);
    return limits;
}

/// A download service on which silence passes a hundred times faster: it repeats each progress call without
/// new bytes a hundred times.
class HastyCurl : public CurlService
{
public:
    using CurlService::CurlService;
    using CurlService::download_to_location;

    bool download_to_location(const std::string& url, const fileString& target,
                              const std::vector<std::string>& headerLines, void* context,
                              ProgressFunction progress, std::string& reason, int& errorNumber) override
    {
        Watch watch{context, progress};
        return CurlService::download_to_location(url, target, headerLines, &watch, Watch::call, reason,
                                                 errorNumber);
    }

private:
    struct Watch
    {
        void* context;
        ProgressFunction progress;
        double last = 0;

        static int call(void* self, double total, double downloaded, double uploadTotal, double uploaded)
        {
            Watch& watch = *static_cast<Watch*>(self);
            int calls = downloaded == watch.last ? 100 : 1;
            watch.last = downloaded;
            int ended = 0;
            for (; calls > 0 && ended == 0; --calls)
                ended = watch.progress(watch.context, total, downloaded, uploadTotal, uploaded);
            return ended;
        }
    };
};

/// Whether updates may leave this file behind: in a download folder, the error log, or the preferences.
bool isTransient(const std::string& path)
{
    return path.rfind("temp/Orv Test.downloads.", 0) == 0 || path == "user/errors.log" ||
           path == "preferences.json";
}

} // namespace

const std::vector<RequestKind>& spoiltKinds()
{
    static const std::vector<RequestKind> kinds{RequestKind::Redirect, RequestKind::Index,
                                                RequestKind::Header,   RequestKind::Page,
                                                RequestKind::Body,     RequestKind::Archive};
    return kinds;
}

const char* kindName(RequestKind kind)
{
    const char* const names[] = {"redirect", "index", "header", "page", "body", "archive", "other"};
    return names[static_cast<int>(kind)];
}

UpdateWorld::UpdateWorld()
{
    mServed[kIndex] = "Doors.orvlib\nT\xc3\xbcr neu.orvlib\nKept.orvlib\nTex.zip\n";
    mServed["Kept.orvlib"] = sampleBytes(1500, 1);
    mServed["Acme.orvlibz"] = packed(sampleBytes(1600, 2), sampleBytes(1100, 3));
    mServed["Doors.orvlib"] = sampleBytes(2100, 4);
    mServed["T\xc3\xbcr neu.orvlib"] = sampleBytes(2200, 5);
    mServed["Tex.zip"] = packed(sampleBytes(1200, 6), sampleBytes(1300, 7));
    mServed["Lamps.orvlibz"] = packed(sampleBytes(1700, 8), sampleBytes(1400, 9));
    mServer.otherwise([this](const FaultRequest& request) { return answer(request); });
    // The first run only creates the archive that belongs to the current catalog of a manufacturer, as
    // unpacking creates it. A disturbed run may fetch that catalog again and write the archive anew.
    reset();
    run();
    mCurrentArchive = readFile(mHost.folder().path() + "/referenced/Acme.zip");
    reset();
    mOld = snapshot();
    run();
    mNew = snapshot();
    EXPECT_TRUE(mRecorder->closingData() && mRecorder->closingData()->result == 2) << "the model run";
}

UpdateWorld::~UpdateWorld() = default;

void UpdateWorld::writeOld()
{
    const std::string doors = sampleBytes(1900, 21);
    const std::string gone = sampleBytes(1950, 22);
    const std::string tex = packed(sampleBytes(1100, 23), "");
    const TempFolder& root = mHost.folder();
    root.write("core/Doors.orvlib", doors);
    root.write("core/Gone.orvlib", gone);
    root.write("core/Kept.orvlib", mServed["Kept.orvlib"]);
    root.write("referenced/Tex.zip", tex);
    root.write("bonus/Lamps.orvlib", sampleBytes(1800, 24));
    root.write("manufacturer/Acme.orvlib", sampleBytes(1600, 2));
    root.write("core/catalog_hash.txt", "Doors.orvlib:" + sha1(doors) + "\nGone.orvlib:" + sha1(gone) +
                                            "\nKept.orvlib:" + sha1(mServed["Kept.orvlib"]) +
                                            "\nTex.zip:" + sha1(tex) + "\n");
    root.write("bonus/catalog_hash.txt", "Lamps.orvlib:" + sha1("the archive of the old lamps") + "\n");
    if (mCurrentArchive.empty())
        return;
    root.write("referenced/Acme.zip", mCurrentArchive);
    root.write("manufacturer/catalog_hash.txt", "Acme.orvlib:" + sha1(mServed["Acme.orvlibz"]) + "\n");
}

void UpdateWorld::reset()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mSpoiltKind = RequestKind::Other;
        mSpoiler = nullptr;
        mOnRequest = nullptr;
    }
    for (const char* folder : {"core", "bonus", "manufacturer", "referenced", "temp", "user"}) {
        for (const auto& entry : fs::directory_iterator(mHost.folder().path() + "/" + folder))
            fs::remove_all(entry.path());
    }
    writeOld();
    mRecorder = std::make_unique<SlotRecorder>();
}

void UpdateWorld::spoil(RequestKind kind, Spoiler spoiler)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mSpoiltKind = kind;
    mSpoiler = std::move(spoiler);
}

void UpdateWorld::setDelay(std::chrono::milliseconds delay)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mDelay = delay;
}

void UpdateWorld::onRequest(std::function<void(std::size_t)> hook)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mOnRequest = std::move(hook);
    mRequests = 0;
}

std::size_t UpdateWorld::requestCount() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mRequests;
}

LibraryCatalogUpdate::LibraryCatalogUpdater UpdateWorld::updater()
{
    const TempFolder& root = mHost.folder();
    UpdateArguments arguments;
    for (const char* name : {"core/Doors.orvlib", "core/Gone.orvlib", "core/Kept.orvlib"})
        arguments.core.insert(root.file(name));
    arguments.bonus = {root.file("bonus/Lamps.orvlib")};
    arguments.manufacturer = {root.file("manufacturer/Acme.orvlib")};
    arguments.redirect = mServer.url("/redirect");
    return makeUpdater(*mRecorder, arguments);
}

void UpdateWorld::run()
{
    run([this] { runUpdate(updater()); });
}

void UpdateWorld::run(const std::function<void()>& runner)
{
    CurlService patient;
    HastyCurl hasty(shortLimits());
    Curl* const former = Curl::install(mSpoiler ? &hasty : &patient);
    runner();
    Curl::install(former);
}

FaultReply UpdateWorld::soundAnswer(const std::string& name, const FaultRequest& request) const
{
    const auto served = mServed.find(name);
    if (served == mServed.end())
        return FaultReply::status(404, "There is no such file.");
    return FaultReply::file(request, served->second, "\"" + sha1(served->second) + "\"");
}

FaultReply UpdateWorld::soundAnswer(RequestKind kind) const
{
    switch (kind) {
    case RequestKind::Redirect:
        return FaultReply::redirect("/content?key=1");
    case RequestKind::Index:
        return soundAnswer(kIndex, {});
    case RequestKind::Page:
        return soundAnswer(kGone, {});
    case RequestKind::Archive:
        return soundAnswer(kSpoiltArchive, {});
    default:
        return soundAnswer(kSpoiltCatalog, {});
    }
}

FaultReply UpdateWorld::answer(const FaultRequest& request)
{
    RequestKind spoiltKind;
    Spoiler spoiler;
    std::function<void(std::size_t)> hook;
    std::size_t number;
    std::chrono::milliseconds delay;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        spoiltKind = mSpoiltKind;
        spoiler = mSpoiler;
        hook = mOnRequest;
        number = ++mRequests;
        delay = mDelay;
    }
    if (hook)
        hook(number);
    const RequestKind kind = kindOf(request);
    FaultReply sound =
        kind == RequestKind::Redirect ? soundAnswer(kind) : soundAnswer(libraryOf(request.target), request);
    return spoiler && kind == spoiltKind ? spoiler(sound, request) : sound.pauseAt(0, delay);
}

UpdateWorld::Tree UpdateWorld::snapshot() const
{
    const std::string& root = mHost.folder().path();
    Tree tree;
    for (const std::string& name : listTree(root)) {
        if (name.back() != '/' && !isTransient(name))
            tree[name] = readFile(root + "/" + name);
    }
    return tree;
}

void UpdateWorld::expectKnownContent(const std::string& name, const std::string& content) const
{
    const auto before = mOld.find(name);
    const auto after = mNew.find(name);
    const bool isOld = before != mOld.end() && before->second == content;
    const bool isNew = after != mNew.end() && after->second == content;
    EXPECT_TRUE(isOld || isNew) << name << " holds neither its old nor its new content";
}

/// A new tag beside an old file is an error, because the file would never be fetched again.
void UpdateWorld::expectTagsFit(const std::string& hashFile, const Tree& tree) const
{
    std::istringstream lines(tree.at(hashFile));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        const std::string name = line.substr(0, colon);
        const bool isArchive = fs::path(name).extension() == ".zip";
        const std::string path =
            (isArchive ? "referenced/" : fs::path(hashFile).parent_path().string() + "/") + name;
        const bool saysNew = mNew.at(hashFile).find(line + "\n") != std::string::npos;
        EXPECT_TRUE(!saysNew || tree.at(path) == mNew.at(path)) << path << " is old beside a new tag";
    }
}

void UpdateWorld::expectNothingLost(bool anyContent) const
{
    const Tree tree = snapshot();
    for (const auto& [name, content] : mOld)
        EXPECT_TRUE(tree.count(name)) << name << " is lost";
    for (const auto& [name, content] : tree) {
        EXPECT_TRUE(mOld.count(name) || mNew.count(name)) << name << " is left over";
        if (fs::path(name).filename() != "catalog_hash.txt" && !anyContent)
            expectKnownContent(name, content);
    }
    for (const char* hashFile :
         {"core/catalog_hash.txt", "bonus/catalog_hash.txt", "manufacturer/catalog_hash.txt"}) {
        if (!anyContent && mRecorder)
            expectTagsFit(hashFile, tree);
    }
    EXPECT_TRUE(!mRecorder || mRecorder->closings() == 1u) << "not closed once";
    for (const std::string& name : listTree(mHost.folder().path() + "/temp"))
        EXPECT_NE(fs::path(name).extension(), ".orv-new") << name << " was fetched and not discarded";
}

void UpdateWorld::recoverLeftOvers()
{
    const std::string root = mHost.folder().path() + "/";
    for (const char* kind : {"core", "bonus", "manufacturer"}) {
        const fs::path folder = root + "temp/Orv Test.downloads." + kind;
        if (!fs::exists(folder))
            continue;
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".orvlib")
                fs::rename(entry.path(), fs::path(root + kind) / entry.path().filename());
        }
    }
}

void UpdateWorld::expectConverges()
{
    spoil(RequestKind::Other, nullptr);
    onRequest(nullptr);
    setDelay(std::chrono::milliseconds(0));
    mRecorder = std::make_unique<SlotRecorder>();
    run();
    ASSERT_TRUE(mRecorder->closingData());
    EXPECT_GE(mRecorder->closingData()->result, 2) << "the clean run failed";
    expectNew();
}

void UpdateWorld::expectNew() const
{
    const Tree tree = snapshot();
    for (const auto& [name, content] : mNew) {
        ASSERT_TRUE(tree.count(name)) << name;
        EXPECT_TRUE(tree.at(name) == content) << name;
    }
    EXPECT_EQ(tree.size(), mNew.size());
}

} // namespace test
