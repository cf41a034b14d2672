#include "tests/catalog/CatalogTest.h"

#include <filesystem>
#include <stdexcept>

using LibraryCatalogUpdate::LibraryCatalogUpdater;
using testing::IsEmpty;

namespace {

/// Core-only runs: which downloads the updater announces to the download service.
class LibraryCatalogUpdaterAnnounce : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterAnnounce() { mArguments.coreOnly = true; }
};

} // namespace

TEST_F(LibraryCatalogUpdaterAnnounce, downloadsAreAnnouncedExactlyAsTheyAreMade)
{
    changed("a.orvlib");
    changed("b.orvlib").body = std::string(1, 'x');
    changed("Tex.zip");
    serve("current.orvlib", kNew, "old");
    std::vector<fileString> targets;
    for (const char* name : {"Tex.zip", "a.orvlib", "b.orvlib"})
        mCurl.files[name].afterDownload = [&](const fileString& target) { targets.push_back(target); };
    run();
    ASSERT_EQ(mCurl.downloadAnnouncements.size(), 2u);
    const auto& [before, announced] = mCurl.downloadAnnouncements[0];
    ASSERT_EQ(announced.size(), 3u);
    EXPECT_EQ(mCurl.asked("GET"), (std::vector<std::string>{"Tex.zip", "a.orvlib", "b.orvlib"}));
    ASSERT_EQ(targets.size(), 3u);
    const std::size_t first = mCurl.requestHeaders.size() - 3;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ("GET " + announced[i].url, mCurl.requests[before + i]);
        EXPECT_EQ(announced[i].headerLines, mCurl.requestHeaders[first + i]);
        EXPECT_EQ(announced[i].target, targets[i]);
    }
    EXPECT_EQ(announced[0].size, 5000);
    EXPECT_EQ(announced[2].size, 1);
    EXPECT_EQ(mCurl.downloadAnnouncements[1].first, before + 3);
    EXPECT_THAT(mCurl.downloadAnnouncements[1].second, IsEmpty());
}

TEST_F(LibraryCatalogUpdaterAnnounce, announcementEndsWithACancelAndWithAFailedInstallation)
{
    changed("a.orvlib").body.clear();
    mCurl.files["a.orvlib"].headerLines = "ETag: \"new\"\r\nContent-Length: 5000\r\n";
    changed("b.orvlib");
    run();
    EXPECT_EQ(mCurl.asked("GET"), std::vector<std::string>{"a.orvlib"});
    ASSERT_EQ(mCurl.downloadAnnouncements.size(), 2u);
    EXPECT_THAT(mCurl.downloadAnnouncements[1].second, IsEmpty());
    mCurl.downloadAnnouncements.clear();
    mCurl.requests.clear();
    mCurl.onRequest = [](const std::string& request) {
        if (request.rfind("GET ", 0) == 0)
            LibraryCatalogUpdater::killDownload();
    };
    run();
    EXPECT_EQ(mCurl.asked("GET"), (std::vector<std::string>{"a.orvlib", "b.orvlib"}));
    ASSERT_GE(mCurl.downloadAnnouncements.size(), 3u);
    const std::size_t made = mCurl.downloadAnnouncements[0].first;
    EXPECT_EQ(mCurl.downloadAnnouncements[1].first, made + 1) << "discarded before the next one is tried";
    EXPECT_THAT(mCurl.downloadAnnouncements[1].second, IsEmpty());
}

TEST_F(LibraryCatalogUpdaterAnnounce, nothingIsAnnouncedWhenNothingIsToBeFetched)
{
    mArguments.core.insert(installed("core/a.orvlib", kOld));
    serve("a.orvlib", kNew, test::sha1Of(kOld));
    run();
    EXPECT_THAT(mCurl.downloadAnnouncements, IsEmpty());
}

TEST_F(LibraryCatalogUpdaterAnnounce, serviceThatCannotBeToldOfDownloadsIsAskedInTurn)
{
    changed("a.orvlib");
    mCurl.onAnnouncement = [] { throw std::runtime_error("not this one"); };
    run();
    EXPECT_EQ(result(), 2);
}

TEST_F(LibraryCatalogUpdaterAnnounce, foldersAreThereBeforeTheDownloadsAreAnnounced)
{
    changed("a.orvlib");
    changed("Tex.zip");
    std::vector<std::string> missing;
    mCurl.onAnnouncement = [&] {
        if (mCurl.downloadAnnouncements.size() != 1)
            return;
        for (const auto& request : mCurl.downloadAnnouncements.front().second) {
            if (!request.target.parentPath().pathExists())
                missing.push_back(request.url);
        }
    };
    run();
    ASSERT_EQ(mCurl.downloadAnnouncements.size(), 2u);
    EXPECT_EQ(mCurl.downloadAnnouncements.front().second.size(), 2u);
    EXPECT_THAT(missing, IsEmpty());
}

TEST_F(LibraryCatalogUpdaterAnnounce, foldersHaveStandardPermissionsWhicheverStepMakesThem)
{
    const std::string referenced = path("referenced").toNativeString();
    std::filesystem::remove_all(referenced);
    changed("a.orvlib");
    const fileString folder(download("core", "a.orvlib").parentPath());
    std::vector<unsigned> modes;
    mCurl.onAnnouncement = [&] {
        if (folder.pathExists())
            modes.push_back(test::modeOf(folder));
        std::filesystem::remove_all(folder.toNativeString());
    };
    mCurl.onRequest = [&](const std::string& request) {
        if (request.rfind("GET ", 0) == 0)
            modes.push_back(test::modeOf(folder));
    };
    run();
    EXPECT_EQ(test::modeOf(path("referenced")), 0755u);
    ASSERT_GE(modes.size(), 2u) << "as it was announced, and as it was made anew";
    for (const unsigned mode : modes)
        EXPECT_EQ(mode, 0755u);
}
