#include "apps/catalog-service/CatalogService.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/SHA1.h"
#include "tests/catalog-service/HttpProbe.h"
#include "tests/support/TempFolder.h"

using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

namespace test {

namespace {

class CatalogServiceTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::create_directories(folder.path() + "/served/content");
        fs::create_directories(folder.path() + "/served/manufacturers");
        std::string reason;
        ASSERT_TRUE(service.start("127.0.0.1", 0, reason)) << reason;
    }
    fileString put(const std::string& name, const std::string& content)
    {
        return folder.write("served/" + name, content);
    }
    std::string contentUrl(const std::string& name) const
    {
        return service.url("/content?&library=" + name + "&product=P&version=1");
    }
    static std::string tagOf(const fileString& file) { return '"' + SHA1::fileContentsToSHA1Hex(file) + '"'; }

    TempFolder folder;
    CatalogService service{folder.path() + "/served"};
};

} // namespace

TEST_F(CatalogServiceTest, redirectLeadsToTheEndpointWithItsQuestionMark)
{
    const ProbeAnswer answer = get(service.redirectUrl());
    EXPECT_EQ(answer.status, 302);
    EXPECT_EQ(answer.header("Location"), "/content?");
    EXPECT_EQ(Curl::get().urlAfterRedirects(service.redirectUrl()), service.url("/content?"));
}

TEST_F(CatalogServiceTest, filesCarryTagLengthAndDate)
{
    const fileString file = put("content/Doors.orvlib", "doors");
    fs::last_write_time(file.toNativeString(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    for (const char* method : {"GET", "HEAD"}) {
        const ProbeAnswer answer = probe(method, contentUrl("Doors.orvlib"));
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer.header("ETag"), tagOf(file));
        EXPECT_EQ(answer.header("Content-Length"), "5");
        EXPECT_THAT(answer.header("Last-Modified"), testing::MatchesRegex("..., [0-9]+ ... [0-9]+ .* GMT"));
        EXPECT_EQ(answer.body, std::string(method) == "GET" ? "doors" : "");
    }
}

TEST_F(CatalogServiceTest, lastModifiedIsTheFilesTime)
{
    const fileString file = put("content/a", "x");
    const std::string command = "touch -d '2026-03-01 05:06:07 UTC' '" + file.toNativeString() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(head(contentUrl("a")).header("Last-Modified"), "Sun, 01 Mar 2026 05:06:07 GMT");
}

TEST_F(CatalogServiceTest, matchingTagIsUnchanged)
{
    const std::string tag = tagOf(put("content/a", "x"));
    for (const std::string& value : {tag, "W/" + tag, "\"x\", " + tag, std::string("*")}) {
        const ProbeAnswer answer = get(contentUrl("a"), {"If-None-Match: " + value});
        EXPECT_EQ(answer.status, 304) << value;
        EXPECT_EQ(answer.header("ETag"), tag);
        EXPECT_EQ(answer.body, "");
    }
    EXPECT_EQ(get(contentUrl("a"), {"If-None-Match: \"\""}).status, 200);
    EXPECT_EQ(get(contentUrl("a"), {"If-None-Match: \"x\"", "If-None-Match: " + tag}).status, 304);
    EXPECT_EQ(get(contentUrl("missing"), {"If-None-Match: *"}).status, 404);
}

TEST_F(CatalogServiceTest, replacedFileHasANewTagAtOnce)
{
    put("content/a", "one");
    const std::string first = head(contentUrl("a")).header("ETag");
    const fileString file = put("content/a", "two");
    EXPECT_NE(head(contentUrl("a")).header("ETag"), first);
    EXPECT_EQ(head(contentUrl("a")).header("ETag"), tagOf(file));
}

TEST_F(CatalogServiceTest, partsAreServed)
{
    const std::string tag = tagOf(put("content/a", "0123456789"));
    const ProbeAnswer middle = get(contentUrl("a"), {"Range: bytes=2-4"});
    EXPECT_EQ(middle.status, 206);
    EXPECT_EQ(middle.body, "234");
    EXPECT_EQ(middle.header("Content-Range"), "bytes 2-4/10");
    EXPECT_EQ(middle.header("Content-Length"), "3");
    EXPECT_EQ(get(contentUrl("a"), {"Range: bytes=-2"}).body, "89");
    EXPECT_EQ(get(contentUrl("a"), {"Range: bytes=7-"}).body, "789");
    EXPECT_EQ(get(contentUrl("a"), {"Range: bytes=7-", "If-Range: " + tag}).body, "789");
    const ProbeAnswer other = get(contentUrl("a"), {"Range: bytes=7-", "If-Range: \"other\""});
    EXPECT_EQ(other.status, 200);
    EXPECT_EQ(other.body, "0123456789");
    const ProbeAnswer outside = get(contentUrl("a"), {"Range: bytes=10-"});
    EXPECT_EQ(outside.status, 416);
    EXPECT_EQ(outside.header("Content-Range"), "bytes */10");
    EXPECT_EQ(get(contentUrl("a"), {"Range: bytes=0-1,4-5"}).body, "0123456789");
}

TEST_F(CatalogServiceTest, unknownNamesGetAShortText)
{
    for (const std::string target :
         {"/content?&library=missing.orvlib", "/content?", "/content", "/", "/other", "/logos?",
          "/logos?&logo-path=missing.png", "/manufacturers?"}) {
        const ProbeAnswer answer = get(service.url(target));
        EXPECT_EQ(answer.status, 404) << target;
        EXPECT_EQ(answer.body, "This content is not published.\n");
        EXPECT_THAT(answer.header("Content-Type"), StartsWith("text/plain"));
        EXPECT_EQ(answer.header("ETag"), "");
    }
}

TEST_F(CatalogServiceTest, namesAreLookedUpDecodedFirstThenAsSent)
{
    put("content/a b.orvlib", "blank");
    EXPECT_EQ(get(contentUrl("a%20b.orvlib")).body, "blank");
    put("content/c%20d.orvlib", "literal");
    EXPECT_EQ(get(contentUrl("c%20d.orvlib")).body, "literal");
    put("content/c d.orvlib", "decoded");
    EXPECT_EQ(get(contentUrl("c%20d.orvlib")).body, "decoded");
    put("content/a+b.orvlib", "plus");
    EXPECT_EQ(get(contentUrl("a+b.orvlib")).body, "plus");
    EXPECT_EQ(get(contentUrl("a%2Bb.orvlib")).body, "plus");
    put("content/100%.orvlib", "percent");
    EXPECT_EQ(get(contentUrl("100%25.orvlib")).body, "percent");
}

TEST_F(CatalogServiceTest, namesWithBlanksAndForeignLettersComeThroughTheDownloadService)
{
    const TempFolder target;
    for (const std::string name : {"T\xc3\xbcren aus Holz.orvlib", "a+b.orvlib", "50% off.orvlib",
                                   "x'y(1).orvlib", "\xe6\x97\xa5\xe6\x9c\xac.zip"}) {
        put("content/" + name, "content of " + name);
        std::string reason;
        EXPECT_TRUE(Curl::get().download_to_location(contentUrl(name), target.file("x"), reason))
            << name << reason;
        EXPECT_EQ(readFile(target.file("x")), "content of " + name);
    }
}

TEST_F(CatalogServiceTest, nothingOutsideTheFolderIsServed)
{
    folder.write("secret", "secret");
    put("content/in/deep", "deep");
    fs::create_symlink(folder.path() + "/secret", folder.path() + "/served/content/link");
    fs::create_directory_symlink(folder.path(), folder.path() + "/served/content/up");
    fs::create_symlink("in/deep", folder.path() + "/served/content/inner");
    for (const std::string name :
         {"../../secret", "..%2F..%2Fsecret", "%2e%2e/%2e%2e/secret", "in/../../../secret", "link",
          "up/secret", "%2Fetc%2Fpasswd", "/etc/passwd", "..", ".", "", "%00", "in/deep%00.orvlib", "in",
          "./in/deep", "in/../in/deep", "..%5c..%5csecret"}) {
        EXPECT_EQ(get(contentUrl(name)).status, 404) << name;
        EXPECT_EQ(get(service.url("/logos?&logo-path=" + name)).status, 404) << name;
        EXPECT_EQ(get(service.url("/manufacturers?&library=" + name)).status, 404) << name;
    }
    EXPECT_EQ(get(service.url("/content/../../secret?&library=a")).status, 404);
    EXPECT_EQ(get(contentUrl("in/deep")).body, "deep");
    EXPECT_EQ(get(contentUrl("inner")).body, "deep");
}

TEST_F(CatalogServiceTest, pipesAndFoldersAreNoFiles)
{
    ASSERT_EQ(std::system(("mkfifo '" + folder.path() + "/served/content/pipe'").c_str()), 0);
    EXPECT_EQ(get(contentUrl("pipe")).status, 404);
}

TEST_F(CatalogServiceTest, manufacturerDataNeedsNoName)
{
    put("manufacturers/manufacturer_data.json", "{}");
    put("manufacturers/other.json", "[]");
    EXPECT_EQ(get(service.manufacturersUrl()).body, "{}");
    EXPECT_EQ(get(service.url("/manufacturers")).body, "{}");
    EXPECT_EQ(get(service.url("/manufacturers?&library=manufacturer_data.json")).body, "{}");
    EXPECT_EQ(get(service.url("/manufacturers?&library=other.json")).body, "[]");
    EXPECT_EQ(get(contentUrl("manufacturer_data.json")).status, 404);
}

TEST_F(CatalogServiceTest, logosAreFoundInBothEncodings)
{
    put("manufacturers/T\xc3\xbcren 1.png", "utf8");
    put("manufacturers/Gr\xfcn.png", "cp1252");
    const auto logo = [this](const std::string& name) {
        return get(service.logosUrl() + "&logo-path=" + name).body;
    };
    EXPECT_EQ(logo("T%C3%BCren%201.png"), "utf8");
    EXPECT_EQ(logo("T%FCren%201.png"), "utf8");
    EXPECT_EQ(logo("Gr%FCn.png"), "cp1252");
    EXPECT_EQ(logo("Gr%C3%BCn.png"), "cp1252");
    const TempFolder target;
    std::string reason;
    EXPECT_TRUE(Curl::get().download_to_location(service.logosUrl() + "&logo-path=T\xfcren 1.png",
                                                 target.file("x"), reason))
        << reason;
}

TEST_F(CatalogServiceTest, emptyFileIsServed)
{
    put("content/empty", "");
    const ProbeAnswer answer = get(contentUrl("empty"));
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.header("Content-Length"), "0");
    EXPECT_EQ(head(contentUrl("empty")).header("Content-Length"), "0");
    EXPECT_EQ(answer.header("ETag"), "\"da39a3ee5e6b4b0d3255bfef95601890afd80709\"");
}

TEST_F(CatalogServiceTest, otherMethodsAreRefused)
{
    put("content/a", "x");
    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "PATCH"}) {
        const ProbeAnswer answer = probe(method, contentUrl("a"));
        EXPECT_EQ(answer.status, 405) << method;
        EXPECT_EQ(answer.header("Allow"), "GET, HEAD");
    }
}

TEST_F(CatalogServiceTest, bodyOfARequestIsNotTakenForAnotherRequest)
{
    put("content/a", "x");
    const std::string inner = "GET /content?&library=a HTTP/1.1\r\nHost: h\r\n\r\n";
    const std::string answer =
        rawExchange(service.port(), "POST /content HTTP/1.1\r\nHost: h\r\nContent-Length: " +
                                        std::to_string(inner.size()) + "\r\n\r\n" + inner);
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 405"));
    EXPECT_EQ(answer.find("HTTP/1.1 200"), std::string::npos);
}

TEST_F(CatalogServiceTest, badRequestsDoNotEndTheService)
{
    for (const std::string& bytes :
         {std::string("\r\n\r\n"), std::string("hello\r\n\r\n"), std::string("GET\r\n\r\n"),
          "GET /" + std::string(20000, 'a') + " HTTP/1.1\r\n\r\n",
          "GET / HTTP/1.1\r\nX: " + std::string(20000, 'a'),
          std::string("GET /content?&library=%zz%\xff HTTP/1.1\r\n\r\n"), std::string(300, '\0')})
        EXPECT_EQ(rawExchange(service.port(), bytes).find("HTTP/1.1 200"), std::string::npos);
    put("content/a", "x");
    EXPECT_EQ(get(contentUrl("a")).body, "x");
}

TEST_F(CatalogServiceTest, pipelinedRequestsAreAnsweredInOrder)
{
    put("content/a", "first");
    put("content/b", "second");
    const std::string answer =
        rawExchange(service.port(), "GET /content?&library=a HTTP/1.1\r\nHost: h\r\n\r\n"
                                    "GET /content?&library=b HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_THAT(answer, HasSubstr("first"));
    EXPECT_THAT(answer.substr(answer.find("first")), HasSubstr("second"));
}

TEST_F(CatalogServiceTest, largeFileArrivesWhole)
{
    std::string content(20'000'000, 0);
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 1000);
    put("content/big", content);
    const TempFolder target;
    std::string reason;
    EXPECT_TRUE(Curl::get().download_to_location(contentUrl("big"), target.file("big"), reason)) << reason;
    EXPECT_TRUE(readFile(target.file("big")) == content);
}

TEST_F(CatalogServiceTest, hundredClientsAtOnceAreServed)
{
    put("content/a", std::string(100'000, 'a'));
    std::vector<std::thread> clients;
    for (int i = 0; i < 100; ++i)
        clients.emplace_back([this] { EXPECT_EQ(get(contentUrl("a")).body.size(), 100'000u); });
    for (std::thread& client : clients)
        client.join();
}

TEST_F(CatalogServiceTest, stoppingDoesNotWaitForIdleConnections)
{
    put("content/a", "x");
    std::string header;
    std::int64_t status = 0;
    EXPECT_TRUE(Curl::get().getURLHeader(contentUrl("a"), {}, header, status));
    const auto start = std::chrono::steady_clock::now();
    service.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_FALSE(Curl::get().getURLHeader(contentUrl("a"), {}, header, status));
}

TEST_F(CatalogServiceTest, fileThatCannotBeServedHasAReason)
{
    std::string reason;
    CatalogService missing(folder.path() + "/missing");
    EXPECT_FALSE(missing.start("127.0.0.1", 0, reason));
    EXPECT_THAT(reason, HasSubstr(folder.path() + "/missing"));
    CatalogService second(folder.path() + "/served");
    EXPECT_FALSE(second.start("127.0.0.1", service.port(), reason));
    EXPECT_THAT(reason, HasSubstr(std::to_string(service.port())));
    CatalogService elsewhere(folder.path() + "/served");
    EXPECT_FALSE(elsewhere.start("192.0.2.1", 0, reason));
    EXPECT_THAT(reason, HasSubstr("192.0.2.1"));
}

} // namespace test
