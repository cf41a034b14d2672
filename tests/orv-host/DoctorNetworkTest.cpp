// The steps on the network that ask the service.
#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-host/DoctorFixture.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using DoctorNetwork = test::DoctorFixture;

const std::string kLogIn = " | Log in to the network with a web browser, or correct the address.";
const Curl::Answer kWebPage{200, "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n", "", ""};
const Curl::Answer kBusy{503, "HTTP/1.1 503 Busy\r\n\r\n", "", ""};

} // namespace

TEST_F(DoctorNetwork, requestsAreThoseOfAnUpdate)
{
    examine();
    const std::string request = "http://service.example/c?&library=";
    EXPECT_THAT(service.asked,
                ElementsAre("redirect " + service.url, "page " + request + "Index.txt&product=P&version=1 0",
                            "header " + request + "Doors.orvlib&product=P&version=1 If-None-Match: \"\"",
                            "body " + request + "Doors.orvlib&product=P&version=1"));
}

TEST_F(DoctorNetwork, certificateIsLookedAtForHttpsOnly)
{
    EXPECT_EQ(good("certificate"), "none needed for http");
    use("httpS");
    EXPECT_EQ(good("certificate"), "the service's certificate is good");
    service.certificateAnswer = {404, "HTTP/1.1 404 Not Found\r\n\r\n", "", ""};
    EXPECT_EQ(good("certificate"), "the service's certificate is good") << "whatever the answer";
    service.certificateAnswer = {};
    const std::string advice =
        " | The service may be down, or speak no https here; compare the address with the "
        "publisher's, or try again later.";
    EXPECT_EQ(bad("certificate"), "no answer" + advice);
    service.certificateAnswer.reason = "wrong version number";
    EXPECT_EQ(bad("certificate"), "wrong version number" + advice);
}

TEST_F(DoctorNetwork, redirectThatLeadsNowhereTellsTheReason)
{
    service.redirectAnswer = {404, "HTTP/1.1 404 Not Found\r\n\r\n", "", ""};
    EXPECT_EQ(bad("redirect"), "the address leads nowhere: HTTP 404 | Correct the address.");
    service.redirectAnswer = {0, "", "certificate has expired", ""};
    EXPECT_THAT(bad("redirect"), AllOf(StartsWith("the address leads nowhere: certificate has expired | "),
                                       HasSubstr("clock")));
}

TEST_F(DoctorNetwork, webPageMeansALogin)
{
    const std::string verdict =
        service.url + " answers with web pages (a login page?), not as a catalog service";
    service.headerAnswer = kWebPage;
    EXPECT_EQ(bad("header"), verdict + kLogIn);
    service.indexAnswer = kWebPage;
    EXPECT_EQ(bad("index"), verdict + kLogIn);
    service.redirectAnswer = kWebPage;
    EXPECT_EQ(bad("redirect"), verdict + kLogIn);
}

TEST_F(DoctorNetwork, nothingIsRepeated)
{
    service.indexAnswer = kBusy;
    EXPECT_EQ(bad("index"),
              "Index.txt: HTTP 503 | Correct the address, or tell the publisher of the service.");
    EXPECT_EQ(service.asked.size(), 2U);
    service.asked.clear();
    service.redirectAnswer = kBusy;
    EXPECT_THAT(bad("redirect"), StartsWith("the address leads nowhere: HTTP 503"));
    EXPECT_EQ(service.asked.size(), 1U);
}

TEST_F(DoctorNetwork, indexHasCatalogsAndArchives)
{
    service.index = "readme.txt\nDoors\n";
    EXPECT_EQ(bad("index"), "Index.txt lists no catalogs | Tell the publisher of the service.");
    service.index = "readme.txt\nTextures.zip\n";
    EXPECT_EQ(good("index"), "Index.txt lists 1 files");
    EXPECT_EQ(good("body"), "bytes of Textures.zip arrive");
    service.indexAnswer = {0, "", "unable to get local issuer certificate", ""};
    EXPECT_THAT(bad("index"), AllOf(StartsWith("Index.txt: unable to get"), HasSubstr("--cacert")));
}

TEST_F(DoctorNetwork, headerMustTellVersionAndLength)
{
    const std::string advice = " | Tell the publisher of the service: without it nothing is fetched.";
    service.headerAnswer.headerText = "HTTP/1.1 200 OK\r\nETag: \"new\"\r\n\r\n";
    EXPECT_EQ(bad("header"), "Doors.orvlib: the service does not tell the length" + advice);
    service.headerAnswer.headerText = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n";
    EXPECT_EQ(bad("header"), "Doors.orvlib: the service does not tell the version" + advice);
    service.headerAnswer.headerText = "HTTP/1.1 200 OK\r\n\r\n";
    EXPECT_EQ(bad("header"), "Doors.orvlib: the service does not tell the version" + advice);
    service.headerAnswer = {404, "HTTP/1.1 404 Not Found\r\n\r\n", "", ""};
    EXPECT_EQ(bad("header"), "Doors.orvlib: HTTP 404 | Tell the publisher of the service.");
}

TEST_F(DoctorNetwork, bodyIsStoppedEarlyAndRemoved)
{
    EXPECT_EQ(good("body"), "bytes of Doors.orvlib arrive");
    EXPECT_THAT(service.stops, ElementsAre(0, testing::Ne(0)));
    EXPECT_THAT(service.target.toNativeString(), StartsWith(host.root().toNativeString() + "temp/doctor-"));
    EXPECT_FALSE(service.target.pathExists());
    service.isBodyWhole = false;
    service.bodyNumber = Curl::kAbortedByCallback;
    EXPECT_EQ(good("body"), "bytes of Doors.orvlib arrive");
    service.bodyNumber = 18;
    service.bodyReason = "cut off";
    EXPECT_EQ(bad("body"), "Doors.orvlib: cut off | Try again later, or tell the publisher of the service.");
    EXPECT_FALSE(service.target.pathExists());
}
