#include "OrvLibrary/catalog/CatalogSources_p.h"

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "tests/catalog/CatalogTest.h"
#include "tests/support/FaultServer.h"

using namespace LibraryCatalogUpdate;

namespace {

class CatalogSources : public test::CatalogTest
{
protected:
    CatalogSources()
    {
        kContentRedirect = "http://service.test/redirect";
        kApiEndpoint.clear();
    }
};

struct UrlRow
{
    const char* file;
    int category;
    const char* library;
};

constexpr auto kNoCategory = static_cast<Library::LibraryCategory>(3);

} // namespace

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

TEST_F(CatalogSources, eachCategoryHasItsFolder)
{
    const std::string root = mHost.folder().path();
    EXPECT_EQ(getDirectoryPathFromCategory(Library::kCoreLibrary).toNativeString(), root + "/core/");
    EXPECT_EQ(getDirectoryPathFromCategory(Library::kManufacturerLibrary).toNativeString(),
              root + "/manufacturer/");
    EXPECT_EQ(getDirectoryPathFromCategory(Library::kBonusLibrary).toNativeString(), root + "/bonus/");
    for (const int other : {0, 3, 5, 8, -1})
        EXPECT_TRUE(getDirectoryPathFromCategory(static_cast<Library::LibraryCategory>(other)).empty());
}

TEST_F(CatalogSources, downloadFoldersAreNamedByApplicationAndKind)
{
    EXPECT_EQ(getTempDirectoryPathFromCategory(Library::kCoreLibrary), path("temp/Orv Test.downloads.core"));
    EXPECT_EQ(getTempDirectoryPathFromCategory(Library::kBonusLibrary),
              path("temp/Orv Test.downloads.bonus"));
    EXPECT_EQ(getTempDirectoryPathFromCategory(Library::kManufacturerLibrary),
              path("temp/Orv Test.downloads.manufacturer"));
}

TEST_F(CatalogSources, noCategoryHasADownloadFolderOfAnEmptyStem)
{
    EXPECT_EQ(getTempDirectoryPathFromCategory(kNoCategory), path("temp/Orv Test.downloads."));
}

TEST_F(CatalogSources, aMissingApplicationObjectIsANullPointerError)
{
    Application* const former = Application::install(nullptr);
    try {
        getTempDirectoryPathFromCategory(Library::kCoreLibrary);
        ADD_FAILURE() << "no error";
    } catch (const NullPointerError& error) {
        EXPECT_EQ(error.pointerName(), "gApp");
    }
    Application::install(former);
}

TEST_F(CatalogSources, packedKindsAreAskedForAsArchives)
{
    const UrlRow rows[] = {
        {"/x/Doors.orvlib", 1, "Doors.orvlib"},
        {"/x/Tex.zip", 1, "Tex.zip"},
        {"/x/Doors.orvlib", 4, "Doors.orvlibz"},
        {"/x/Doors.orvlib", 2, "Doors.orvlibz"},
        {"/x/Tex.zip", 4, "Tex.orvlibz"},
        {"/x/Doors.orvlib", 3, "Doors.orvlib"},
        {"Doors", 1, "Doors"},
        {"Doors", 2, "Doors.orvlibz"},
        {"/x/a.b.orvlib", 4, "a.b.orvlibz"},
        {"/x/T\xc3\xbcr %1% &#.orvlib", 1, "T\xc3\xbcr %1% &#.orvlib"},
    };
    for (const UrlRow& row : rows) {
        const auto category = static_cast<Library::LibraryCategory>(row.category);
        EXPECT_EQ(sourceUrl(fileString(row.file), category, "Orv", "7"),
                  "http://service.test/content?key=1&library=" + std::string(row.library) +
                      "&product=Orv&version=7")
            << row.file << ' ' << row.category;
    }
}

TEST_F(CatalogSources, valuesAreInsertedAsTheyAre)
{
    mCurl.endpoint = "http://h/%2%?";
    EXPECT_EQ(sourceUrl(fileString("a b%1%.orvlib"), Library::kCoreLibrary, "P & Q", "%3%\xfc"),
              "http://h/%2%?&library=a b%1%.orvlib&product=P & Q&version=%3%\xfc");
}

TEST_F(CatalogSources, theEndpointIsResolvedOnce)
{
    sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "", "");
    mCurl.endpoint = "http://other.test/?";
    EXPECT_EQ(sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "", ""),
              "http://service.test/content?key=1&library=a.orvlib&product=&version=");
    EXPECT_THAT(mCurl.requests, ElementsAre("REDIRECT http://service.test/redirect"));
}

TEST_F(CatalogSources, aNewUpdaterResolvesItAgain)
{
    sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "", "");
    mCurl.endpoint = "http://other.test/?";
    mArguments.redirect = "http://new.test/redirect";
    makeUpdater(*mRecorder, mArguments);
    EXPECT_EQ(sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "", ""),
              "http://other.test/?&library=a.orvlib&product=&version=");
    EXPECT_EQ(mCurl.requests.back(), "REDIRECT http://new.test/redirect");
}

TEST_F(CatalogSources, anUnknownEndpointIsLoggedAtEveryCall)
{
    mCurl.endpoint.clear();
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "Orv", "7"), "");
    const std::string message = "Unable to determine api endpoint\n";
    EXPECT_THAT(logMessages(), ElementsAre(message, message, message));
}

TEST_F(CatalogSources, theReasonIsTheNextLineOfTheEntry)
{
    test::FaultServer server;
    server.stopListening();
    kContentRedirect = server.url("/redirect");
    Curl* const scripted = Curl::install(nullptr);
    EXPECT_EQ(sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "Orv", "7"), "");
    kContentRedirect = "service.test/redirect";
    EXPECT_EQ(sourceUrl(fileString("a.orvlib"), Library::kCoreLibrary, "Orv", "7"), "");
    Curl::install(scripted);
    const std::string first = "Unable to determine api endpoint\nReason:  ";
    EXPECT_THAT(logMessages(), ElementsAre(AllOf(StartsWith(first + "Failed to connect to 127.0.0.1 port "),
                                                 EndsWith(" (" + server.url("/redirect") + ")\n")),
                                           first + "not a web address (service.test/redirect)\n"));
}

TEST_F(CatalogSources, theHeaderLineIsAppendedAndTheUrlReplaced)
{
    CatalogUpdateData record;
    record.localHash = "3f2a";
    record.category = Library::kBonusLibrary;
    std::string url = "old";
    std::vector<std::string> headers{"Accept: */*"};
    generate_url_and_headers(url, headers, fileString("Lamps.orvlib"), record, "Orv", "7");
    EXPECT_EQ(url, "http://service.test/content?key=1&library=Lamps.orvlibz&product=Orv&version=7");
    EXPECT_THAT(headers, ElementsAre("Accept: */*", "If-None-Match: \"3f2a\""));
}

TEST_F(CatalogSources, anEmptyTagIsSentAsTwoQuotes)
{
    mCurl.endpoint.clear();
    std::string url = "old";
    std::vector<std::string> headers;
    generate_url_and_headers(url, headers, fileString("a.orvlib"), CatalogUpdateData(), "Orv", "7");
    EXPECT_EQ(url, "");
    EXPECT_THAT(headers, ElementsAre("If-None-Match: \"\""));
}

TEST_F(CatalogSources, zipsAreKeptInTheReferencedFilesFolder)
{
    EXPECT_EQ(catalogFolder(fileString("a.zip"), fileString("/x/")).toNativeString(),
              mHost.folder().path() + "/referenced/");
    EXPECT_EQ(catalogFolder(fileString("a.orvlib"), fileString("/x/")).toNativeString(), "/x/");
    EXPECT_EQ(catalogFolder(fileString("a.ZIP"), fileString("/x/")).toNativeString(), "/x/");
}

TEST(ReasonOfException, isTheTextOfWhatWasThrown)
{
    const auto reasonOf = [](auto&& thrower) -> std::string {
        try {
            thrower();
        } catch (...) {
            return reasonOfException();
        }
        return "nothing thrown";
    };
    EXPECT_EQ(reasonOf([] { throw std::runtime_error("disk full"); }), "disk full");
    EXPECT_EQ(reasonOf([] { throw 7; }), "Unknown error");
    EXPECT_NE(reasonOf([] { NullPointerRaiser::Throw("subject", "file", 1); }), "Unknown error");
    EXPECT_THROW(reasonOf([] { NullPointerRaiser::Throw("gApp", "file", 1); }), NullPointerError);
}
