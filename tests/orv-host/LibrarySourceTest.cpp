#include "OrvHost/imports/LibrarySource.h"

#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/StubServices.h"

using OrvHost::LibrarySource;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Takes what begins with "http" as an address. Sends the prepared body, or fails without one.
class OneBody : public test::DeadCurl
{
public:
    std::string body;
    std::vector<std::pair<double, double>> counts; ///< totals and received bytes, told before the end
    std::vector<std::string> urls;
    std::vector<int> told; ///< what the progress function returned
    fileString target;     ///< of the last download

    bool downloadable(const std::string& url) override { return url.rfind("http", 0) == 0; }
    using DeadCurl::download_to_location;
    bool download_to_location(const std::string& url, const fileString& file, const std::vector<std::string>&,
                              void* context, ProgressFunction progress, std::string& reason, int&) override
    {
        urls.push_back(url);
        target = file;
        for (const auto& [total, done] : counts)
            told.push_back(progress(context, total, done, 0, 0));
        reason = "HTTP 503";
        if (body.empty())
            return false;
        test::writeFile(file.toNativeString(), body);
        return true;
    }
};

class LibrarySourceTest : public test::HostedTest
{
protected:
    /// The stem, or the message of the failure.
    static std::string stemOf(const std::string& text)
    {
        try {
            return LibrarySource(text).stem().toNativeString();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }
    template <class Work>
    static std::string problemOf(Work work)
    {
        try {
            work();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }
    static std::string archive()
    {
        test::ArchiveBuilder builder;
        builder.add("inside.orvlib", "database");
        builder.add("oak.png", "oak");
        return builder.bytes();
    }
    /// Fetches an address while the service tells these counts. Returns the calls of the progress object.
    std::vector<std::string> fetch(const std::vector<std::pair<double, double>>& counts)
    {
        service.body = archive();
        service.counts = counts;
        service.told.clear();
        progress = std::make_shared<test::RecordingProgress>();
        LibrarySource("http://a/Kitchen.orvlibz").fetch(progress);
        return progress->calls();
    }

    OneBody service;
    std::shared_ptr<test::RecordingProgress> progress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(LibrarySourceTest, pathHasTheNameOfItsFile)
{
    EXPECT_EQ(stemOf("/a/Kitchen.orvlibz"), "Kitchen");
    EXPECT_EQ(stemOf("K%C3%BCche#1?library=x.orvlibz"), "K%C3%BCche#1?library=x");
    EXPECT_FALSE(LibrarySource("/a/Kitchen.orvlibz").isAddress());
    for (const std::string none : {"", "/", "a/.", "a/.."})
        EXPECT_EQ(stemOf(none), none + ": names no library");
}

TEST_F(LibrarySourceTest, addressHasTheNameOfTheAskedFile)
{
    for (const auto& [address, stem] : {
             std::pair("http://a/b/Kitchen.orvlibz", "Kitchen"),
             {"http://a/K%C3%BCche.orvlibz?version=7/8#part", "K\xC3\xBC"
                                                              "che"},
             {"http://a/Kitchen.orvlibz#?library=Garden.orvlibz", "Kitchen"},
             {"http://a/c?library=Garden.orvlibz", "Garden"},
             {"http://a/c?library=Garden%20Two.orvlibz&product=P", "Garden Two"},
             {"http://a/c?&library=Garden.orvlibz&product=P", "Garden"},
             {"http://a/c?v=1&mylibrary=No.orvlibz&library=Garden.orvlibz", "Garden"},
             {"http://a/c.orvlibz?mylibrary=No.orvlibz", "c"},
             {"http://a/c.orvlibz?library=&product=P", "c"},
         }) {
        EXPECT_EQ(stemOf(address), stem);
        EXPECT_TRUE(LibrarySource(address).isAddress()) << address;
    }
    for (const std::string none : {"http://a/", "http://a/.", "http://a/..", "http://a/%00b.orvlibz"})
        EXPECT_EQ(stemOf(none), none + ": names no library");
}

TEST_F(LibrarySourceTest, bytesBeyondAsciiAreEscapedForTheService)
{
    service.body = archive();
    LibrarySource("http://a/K\xC3\xBC\xE2\x82\x80~\x7F.orvlibz?a=%20").fetch(progress);
    EXPECT_THAT(service.urls, ElementsAre("http://a/K%C3%BC%E2%82%80~\x7F.orvlibz?a=%20"));
}

TEST_F(LibrarySourceTest, addressIsFetchedOnceAndAPathNever)
{
    service.body = archive();
    fileString file;
    {
        LibrarySource source("http://a/Kitchen.orvlibz");
        source.fetch(progress);
        source.fetch(progress);
        EXPECT_THAT(service.urls, testing::SizeIs(1));
        file = service.target;
        EXPECT_EQ(file.extension(), fileString(".orvlibz"));
        EXPECT_TRUE(file.pathExists());
    }
    EXPECT_FALSE(file.pathExists()) << "it is removed with the source";
    LibrarySource("/a/Kitchen.orvlibz").fetch(progress);
    EXPECT_THAT(service.urls, testing::SizeIs(1));
}

TEST_F(LibrarySourceTest, failedDownloadTellsTheAddressAsItWasTyped)
{
    EXPECT_EQ(problemOf([this] { LibrarySource("http://a/\xC3\xBC.orvlibz").fetch(progress); }),
              "http://a/\xC3\xBC.orvlibz: HTTP 503");
}

TEST_F(LibrarySourceTest, bytesAreToldInPiecesAfterTheirTotal)
{
    EXPECT_THAT(fetch({{1, 0}, {1, 1}}), testing::IsSupersetOf({"total 1"}));
    EXPECT_THAT(progress->bytes(), ElementsAre(1U));
    fetch({{0, 5}, {20e6, 0}, {20e6, 20e6}, {0, 20e6}});
    EXPECT_THAT(progress->bytes(), ElementsAre(5U, 8'000'000U, 8'000'000U, 4'000'000U));
    int totals = 0;
    for (const std::string& call : progress->calls())
        totals += call.rfind("total ", 0) == 0;
    EXPECT_EQ(totals, 1);
    fetch({{10, 10}, {30, 30}});
    EXPECT_THAT(progress->bytes(), ElementsAre(10U, 30U)) << "another try has another body";
}

TEST_F(LibrarySourceTest, cancelIsToldToTheService)
{
    service.body = archive();
    service.counts = {{10, 1}, {10, 2}, {10, 3}};
    progress->isCancelled = [](int number) { return number == 2; };
    LibrarySource("http://a/Kitchen.orvlibz").fetch(progress);
    EXPECT_THAT(service.told, ElementsAre(0, 1, 0));
    EXPECT_THAT(progress->calls(), testing::Not(testing::Contains("check with events")));
    service.told.clear();
    LibrarySource("http://a/Kitchen.orvlibz").fetch(nullptr);
    EXPECT_THAT(service.told, ElementsAre(0, 0, 0));
}

TEST_F(LibrarySourceTest, temporaryFilesGoWithTheResult)
{
    service.body = archive();
    LibrarySource address("http://a/Kitchen.orvlibz");
    address.fetch(progress);
    const LibrarySource path(folder.write("Kitchen.orvlibz", archive()).toNativeString());
    const std::vector<std::string> before = test::listTree(folder.path());
    for (const LibrarySource* source : {&std::as_const(address), &path}) {
        fileString library, textures;
        {
            const auto files = source->unpack(progress);
            ASSERT_TRUE(files);
            library = files->found.first.second;
            textures = files->found.second.second;
            EXPECT_EQ(test::readFile(library), "database");
            EXPECT_TRUE(textures.pathExists());
            EXPECT_NE(library.parentPath(), fileString(folder.path()));
        }
        EXPECT_FALSE(library.pathExists() || textures.pathExists());
    }
    EXPECT_EQ(test::listTree(folder.path()), before);
}

TEST_F(LibrarySourceTest, filesBesideTheArchiveStay)
{
    const LibrarySource source(folder.write("Kitchen.orvlibz", archive()).toNativeString());
    const auto found = source.unpackBeside(progress);
    EXPECT_EQ(found.first.second, folder.file("Kitchen.orvlib"));
    EXPECT_EQ(test::readFile(folder.file("Kitchen.orvlib")), "database");
    EXPECT_EQ(found.second.second.parentPath(), fileString(folder.path()));
}

TEST_F(LibrarySourceTest, sourceThatCannotBeUnpackedIsNamedOnce)
{
    const std::string missing = folder.file("missing.orvlibz").toNativeString();
    EXPECT_EQ(problemOf([&] { LibrarySource(missing).unpack(progress); }), missing + ": no such file");
    EXPECT_EQ(problemOf([&] { LibrarySource(missing).unpackBeside(progress); }), missing + ": no such file");
    const std::string page = folder.write("page.orvlibz", "a web page").toNativeString();
    const std::string problem = problemOf([&] { LibrarySource(page).unpack(progress); });
    ASSERT_THAT(problem, testing::StartsWith(page + ": "));
    const std::string reason = problem.substr(page.size());
    EXPECT_EQ(reason.find('/'), std::string::npos) << problem;
    service.body = "a web page";
    LibrarySource address("http://a/Kitchen.orvlibz");
    address.fetch(progress);
    EXPECT_EQ(problemOf([&] { address.unpack(progress); }), "http://a/Kitchen.orvlibz" + reason);
}

TEST_F(LibrarySourceTest, fileTakesThePlaceOfAnother)
{
    const fileString from = folder.write("from", "new");
    const fileString to = folder.write("to", "old");
    OrvHost::moveOver(from, to);
    EXPECT_EQ(test::readFile(to), "new");
    EXPECT_FALSE(from.pathExists());
    EXPECT_EQ(problemOf([&] { OrvHost::moveOver(from, to); }), to.toNativeString() + ": cannot be written");
    EXPECT_EQ(test::readFile(to), "new");
    std::filesystem::create_directory(folder.path() + "/folder");
    EXPECT_EQ(problemOf([&] { OrvHost::moveOver(to, folder.file("folder")); }),
              folder.path() + "/folder: is a folder");
    EXPECT_TRUE(to.pathExists());
}

TEST_F(LibrarySourceTest, fileOfAnotherDiskIsMovedToo)
{
    const test::OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "there is no other disk";
    const fileString from(other.path() + "/from");
    test::writeFile(from.toNativeString(), "new");
    OrvHost::moveOver(from, folder.file("to"));
    EXPECT_EQ(test::readFile(folder.file("to")), "new");
    EXPECT_FALSE(from.pathExists());
}

TEST_F(LibrarySourceTest, absolutePathHasNoDots)
{
    EXPECT_EQ(OrvHost::absolutePath(fileString("/a/./b/../c")), fileString("/a/c"));
    EXPECT_EQ(OrvHost::absolutePath(fileString("a")),
              fileString((std::filesystem::current_path() / "a").string()));
}
