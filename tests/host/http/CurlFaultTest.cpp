#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <netinet/in.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include "OrvLibrary/host/PathUtils.h"
#include "tests/host/http/CurlFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using namespace std::chrono_literals;

namespace test {

namespace {

/// A host without a temporary folder.
class PathsWithoutTemp : public RootPathUtils
{
public:
    using RootPathUtils::RootPathUtils;
    fileString getTempPath() const override { throw std::runtime_error("no temporary folder"); }
};

class CurlFaultTest : public CurlFixture
{
protected:
    CurlFaultTest() : CurlFixture(shortLimits()) {}
};

} // namespace

TEST_F(CurlFaultTest, replyCutAnywhereIsAFailedDownloadWithoutAFile)
{
    const std::size_t size = FaultReply::ok("0123456789").bytes("GET").size();
    for (std::size_t cut = 0; cut < size; ++cut) {
        server.on("/a", FaultReply::ok("0123456789").cutAt(cut));
        EXPECT_FALSE(fetch(server.url("/a"))) << cut;
        EXPECT_FALSE(reason.empty());
        EXPECT_NE(errorNumber, 0);
        EXPECT_THAT(files(), IsEmpty());
        curl.forgetUnanswered();
    }
}

TEST_F(CurlFaultTest, hostMayHaveAnAddressTriedAgainAtOnce)
{
    server.on("/a", FaultReply::raw("").close());
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(Curl::get().browseURL(server.url("/a"), {}, body, true, 0));
    server.on("/a", FaultReply::ok("a"));
    EXPECT_FALSE(Curl::get().browseURL(server.url("/a"), {}, body, true, 0));
    EXPECT_THAT(Curl::get().lastAnswer().reason, HasSubstr("a moment ago"));
    Curl::forgetFailures();
    EXPECT_TRUE(Curl::get().browseURL(server.url("/a"), {}, body, true, 0));
}

TEST_F(CurlFaultTest, folderThatTheHostCannotTellFailsTheDownload)
{
    server.on("/a", FaultReply::ok("x"));
    PathsWithoutTemp paths(folder.file("root"));
    PathUtils* const former = PathUtils::install(&paths);
    EXPECT_TRUE(curl.download(server.url("/a")).empty());
    PathUtils::install(former);
    EXPECT_EQ(curl.lastAnswer().reason, "no temporary folder");
}

TEST_F(CurlFaultTest, headerCutAnywhereIsNoHeader)
{
    const std::string whole = FaultReply::ok("", {"ETag: \"abcdef\""}).bytes("HEAD");
    for (std::size_t cut = 0; cut + 1 < whole.size(); ++cut) {
        server.on("/a", FaultReply::ok("", {"ETag: \"abcdef\""}).cutAt(cut));
        EXPECT_FALSE(header(server.url("/a"))) << cut;
        EXPECT_EQ(headerText, "untouched");
        curl.forgetUnanswered();
    }
}

TEST_F(CurlFaultTest, chunkedBodyCutAnywhereFails)
{
    const std::size_t size = FaultReply::chunked({"0123", "456789"}).bytes("GET").size();
    // A chunked body without its last line end is still complete.
    for (std::size_t cut = 0; cut + 2 < size; ++cut) {
        server.on("/a", FaultReply::chunked({"0123", "456789"}).cutAt(cut));
        EXPECT_FALSE(fetch(server.url("/a"))) << cut;
        EXPECT_THAT(files(), IsEmpty());
        curl.forgetUnanswered();
    }
}

TEST_F(CurlFaultTest, lengthsThatDoNotFitFail)
{
    for (const std::string length : {"11", "99999999999", "abc", "-1", ""}) {
        server.on(
            "/a",
            FaultReply::raw("HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n0123456789").close());
        EXPECT_FALSE(fetch(server.url("/a"))) << length;
        EXPECT_FALSE(reason.empty());
        EXPECT_THAT(files(), IsEmpty());
    }
    for (const std::string length : {"9", "0"}) {
        server.on("/a", FaultReply::raw("HTTP/1.1 200 OK\r\nContent-Length: " + length +
                                        "\r\nTransfer-Encoding: chunked\r\n\r\n"
                                        "a\r\n0123456789\r\n0\r\n\r\n"));
        EXPECT_FALSE(fetch(server.url("/a"))) << length;
        EXPECT_EQ(reason, "length differs from Content-Length");
    }
}

TEST_F(CurlFaultTest, resetConnectionFails)
{
    server.on("/a", FaultReply::ok(std::string(100000, 'x')).cutAt(50000).reset());
    EXPECT_FALSE(fetch(server.url("/a")));
    EXPECT_FALSE(reason.empty());
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlFaultTest, otherProtocolIsNoAnswer)
{
    for (const std::string bytes : {"hello\r\n\r\n", "SSH-2.0-x\r\n", "<html></html>"}) {
        server.on("/a", FaultReply::raw(bytes).close());
        EXPECT_FALSE(fetch(server.url("/a"))) << bytes;
        EXPECT_FALSE(header(server.url("/a"))) << bytes;
        curl.forgetUnanswered();
    }
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlFaultTest, headerOver300KiBIsAFailure)
{
    std::vector<std::string> lines(12, "X-Long: " + std::string(30000, 'x'));
    server.on("/a", FaultReply::ok("", lines));
    EXPECT_FALSE(header(server.url("/a")));
    EXPECT_FALSE(fetch(server.url("/a")));
    lines.resize(9);
    server.on("/a", FaultReply::ok("", lines));
    EXPECT_TRUE(header(server.url("/a")));
}

TEST_F(CurlFaultTest, headerMayHaveAsManyBytesAsItsLimit)
{
    const FaultReply reply = FaultReply::ok("x");
    server.on("/a", reply);
    HttpLimits limits;
    limits.headerBytes = reply.headSize();
    EXPECT_TRUE(CurlService(limits).download_to_location(server.url("/a"), target(), reason)) << reason;
    --limits.headerBytes;
    EXPECT_FALSE(CurlService(limits).download_to_location(server.url("/a"), target(), reason));
    EXPECT_EQ(reason, "header too large");
    EXPECT_FALSE(CurlService(limits).getURLHeader(server.url("/a"), {}, headerText, status));
}

TEST_F(CurlFaultTest, silentHeaderRequestEndsAtTheTotalTime)
{
    server.on("/a", FaultReply::silence());
    const auto time = timeOf([&] { EXPECT_FALSE(header(server.url("/a"))); });
    EXPECT_GE(time, 400ms);
    EXPECT_LT(time, 3s);
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(browse(server.url("/a"))); }), 3s);
    EXPECT_LT(timeOf([&] { EXPECT_EQ(curl.urlAfterRedirects(server.url("/a")), ""); }), 3s);
}

TEST_F(CurlFaultTest, totalTimeCoversTheWholeChain)
{
    for (int i = 0; i < 10; ++i) {
        server.on("/" + std::to_string(i),
                  FaultReply::redirect("/" + std::to_string(i + 1)).pauseAt(0, 100ms));
    }
    EXPECT_FALSE(header(server.url("/0")));
    EXPECT_LE(server.requests().size(), 5u);
}

TEST_F(CurlFaultTest, tricklingPageEndsAtTheTotalTime)
{
    server.on("/a", FaultReply::ok(std::string(1000, 'x')).trickle(1, 20ms));
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(browse(server.url("/a"))); }), 3s);
}

TEST_F(CurlFaultTest, callersLimitCounts)
{
    CurlService patient;
    server.on("/a", FaultReply::silence());
    std::string page;
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(patient.browseURL(server.url("/a"), {}, page, true, 1)); }), 5s);
}

TEST_F(CurlFaultTest, fileWithoutProgressEndsWhenItIsTooSlow)
{
    FaultReply reply = FaultReply::ok(std::string(10000, 'x'));
    server.on("/a", reply.silentAt(5000));
    server.on("/silent", FaultReply::silence());
    for (const char* path : {"/a", "/silent"}) {
        const auto time =
            timeOf([&] { EXPECT_FALSE(curl.download_to_location(server.url(path), target(), reason)); });
        EXPECT_EQ(reason, "Operation too slow");
        EXPECT_GE(time, 300ms);
        EXPECT_LT(time, 3s);
    }
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlFaultTest, slowFileThatMovesOutlastsTheTotalTime)
{
    FaultReply reply = FaultReply::ok(std::string(8, 'x'));
    for (std::size_t i = 1; i < 8; ++i)
        reply.pauseAt(reply.headSize() + i, 100ms);
    server.on("/a", reply);
    EXPECT_TRUE(curl.download_to_location(server.url("/a"), target(), reason)) << reason;
}

TEST_F(CurlFaultTest, refusedAndUnknownHostsFail)
{
    server.stopListening();
    EXPECT_FALSE(fetch(server.url("/a")));
    EXPECT_THAT(reason, HasSubstr("connect"));
    EXPECT_EQ(errorNumber, 7);
    EXPECT_FALSE(fetch("http://name.invalid/"));
    EXPECT_FALSE(reason.empty());
}

TEST_F(CurlFaultTest, connectingEndsAtItsTime)
{
    // The queue of this listener is full, so the system drops further attempts to connect.
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(listener, 0), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    std::vector<int> fillers;
    for (int i = 0; i < 4; ++i) {
        fillers.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        connect(fillers.back(), reinterpret_cast<sockaddr*>(&address), size);
    }
    const std::string url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
    int calls = 0;
    const auto count = [](void* counter, double, double, double, double) {
        ++*static_cast<int*>(counter);
        return 0;
    };
    EXPECT_LT(timeOf([&] { EXPECT_FALSE(fetch(url, {}, count, &calls)); }), 4s);
    EXPECT_EQ(errorNumber, 28) << reason;
    for (const int filler : fillers)
        ::close(filler);
    ::close(listener);
}

TEST_F(CurlFaultTest, addressWithoutAnswersIsLeftAloneForAWhile)
{
    HttpLimits limits = shortLimits();
    auto now = HttpLimits::Clock::now();
    limits.now = [&now] { return now; };
    CurlService service(limits);
    server.on("/dead", FaultReply::raw("").close());
    server.on("/a", FaultReply::ok("x"));
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(service.getURLHeader(server.url("/dead"), {}, headerText, status));
    const std::size_t before = server.requests().size();
    EXPECT_FALSE(service.getURLHeader(server.url("/a"), {}, headerText, status));
    EXPECT_FALSE(service.download_to_location(server.url("/a"), target(), reason));
    EXPECT_THAT(reason, HasSubstr("no answer from 127.0.0.1:"));
    EXPECT_EQ(server.requests().size(), before);
    now += 60s;
    EXPECT_TRUE(service.getURLHeader(server.url("/a"), {}, headerText, status));
}

TEST_F(CurlFaultTest, errorStatusIsAnAnswer)
{
    server.on("/a", FaultReply::status(500));
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(header(server.url("/a")));
}

TEST_F(CurlFaultTest, cancelIsNoMissingAnswer)
{
    server.on("/silent", FaultReply::silence());
    server.on("/a", FaultReply::ok("x"));
    const auto cancel = [](void*, double, double, double, double) { return 1; };
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(fetch(server.url("/silent"), {}, cancel));
    EXPECT_TRUE(header(server.url("/a")));
}

TEST_F(CurlFaultTest, pagesAreCutAtTheirCaps)
{
    HttpLimits limits = shortLimits();
    limits.pageBytes = 100000;
    limits.errorPageBytes = 1000;
    CurlService service(limits);
    server.on("/fits", FaultReply::ok(std::string(100000, 'x')));
    server.on("/long", FaultReply::ok(std::string(100001, 'x')));
    server.on("/error", FaultReply::status(400, std::string(5000, 'e')));
    server.on("/odd", FaultReply::status(399, std::string(5000, 'o')));
    EXPECT_TRUE(service.browseURL(server.url("/fits"), {}, body, true, 0));
    EXPECT_EQ(body.size(), 100000u);
    EXPECT_FALSE(service.browseURL(server.url("/long"), {}, body, true, 0));
    EXPECT_EQ(body.size(), 100000u);
    EXPECT_FALSE(service.browseURL(server.url("/error"), {}, body, true, 0));
    EXPECT_EQ(body, std::string(1000, 'e'));
    service.browseURL(server.url("/odd"), {}, body, false, 0);
    EXPECT_EQ(body.size(), 5000U);
    EXPECT_FALSE(service.download_to_location(server.url("/error"), target(), reason));
    EXPECT_EQ(reason, "HTTP 400");
}

TEST_F(CurlFaultTest, connectionStaysAfterAnErrorPageThatFits)
{
    HttpLimits limits;
    limits.errorPageBytes = 1000;
    CurlService service(limits);
    server.on("/fits", FaultReply::status(404, std::string(1000, 'e')));
    server.on("/long", FaultReply::status(404, std::string(1001, 'e')));
    const auto connectionsAfter = [&](const char* path) {
        EXPECT_FALSE(service.download_to_location(server.url(path), target(), reason));
        EXPECT_EQ(reason, "HTTP 404");
        return server.connectionCount();
    };
    EXPECT_EQ(connectionsAfter("/fits"), 1);
    EXPECT_EQ(connectionsAfter("/long"), 1);
    EXPECT_EQ(connectionsAfter("/fits"), 2);
}

TEST_F(CurlFaultTest, filesEndAtTheirCap)
{
    HttpLimits limits = shortLimits();
    limits.fileBytes = 1000;
    CurlService service(limits);
    server.on("/fits", FaultReply::ok(std::string(1000, 'x')));
    server.on("/announced", FaultReply::ok(std::string(1001, 'x')));
    server.on("/endless", FaultReply::untilClose(std::string(1001, 'x')));
    FaultReply late = FaultReply::untilClose(std::string(1001, 'x'));
    server.on("/late", late.pauseAt(late.headSize() + 1000, 50ms));
    EXPECT_TRUE(service.download_to_location(server.url("/fits"), target(), reason)) << reason;
    for (const char* path : {"/announced", "/endless", "/late"}) {
        EXPECT_FALSE(service.download_to_location(server.url(path), folder.file("b"), reason));
        EXPECT_EQ(reason, "file too large");
    }
    EXPECT_THAT(files(), ElementsAre("a.orvlib"));
}

TEST_F(CurlFaultTest, diskKeepsItsSpareRoom)
{
    HttpLimits limits = shortLimits();
    limits.spare.bytes = std::int64_t(1) << 60;
    limits.spare.share = 1; // the whole disk
    CurlService service(limits);
    server.on("/a", FaultReply::ok(std::string(36500, 'x')));
    EXPECT_FALSE(service.download_to_location(server.url("/a"), target(), reason));
    EXPECT_THAT(reason, MatchesRegex("disk full: 37 KB needed, [0-9]+ [MGT]B free, [0-9]+ [MGT]B kept free"));
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(CurlFaultTest, smallDiskKeepsATwentiethFree)
{
    TempFolder disk;
    if (mount("none", disk.path().c_str(), "tmpfs", 0, "size=20m") != 0)
        GTEST_SKIP() << "a small disk can only be mounted by the superuser";
    CurlService patient; // this amount takes long on a busy machine
    server.on("/fits", FaultReply::ok(std::string(18'000'000, 'x')));
    server.on("/large", FaultReply::ok(std::string(20'000'000, 'x')));
    EXPECT_TRUE(patient.download_to_location(server.url("/fits"), disk.file("a"), reason)) << reason;
    ASSERT_EQ(::unlink(disk.file("a").toNativeString().c_str()), 0);
    EXPECT_FALSE(patient.download_to_location(server.url("/large"), disk.file("b"), reason));
    EXPECT_EQ(reason, "disk full: 20 MB needed, 21 MB free, 2 MB kept free");
    EXPECT_THAT(listTree(disk.path()), IsEmpty());
    umount(disk.path().c_str());
}

TEST_F(CurlFaultTest, fullDiskGivesTheSystemsTextAndKeepsTheOldFile)
{
    TempFolder disk;
    if (mount("none", disk.path().c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "a small disk can only be mounted by the superuser";
    HttpLimits limits = shortLimits();
    limits.spare.bytes =
        -(std::int64_t(1) << 30); // disables the check, so that the disk itself reports the error
    CurlService service(limits);
    disk.write("a", "old");
    server.on("/a", FaultReply::ok(std::string(2'000'000, 'x')));
    EXPECT_FALSE(service.download_to_location(server.url("/a"), disk.file("a"), reason));
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(ENOSPC));
    EXPECT_EQ(readFile(disk.file("a")), "old");
    EXPECT_THAT(listTree(disk.path()), ElementsAre("a"));
    umount(disk.path().c_str());
}

} // namespace test
