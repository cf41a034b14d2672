// The reasons why an update does not find the service, in the program's output and in the log.
#include <QJsonArray>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include "tests/host/http/TlsCertificate.h"
#include "tests/orv-library/Program.h"
#include "tests/support/BrokenService.h"
#include "tests/support/FaultServer.h"

using test::FaultReply;
using testing::HasSubstr;

namespace {

const char* const kHttp = "http://catalogs.example/redirect";
const char* const kHttps = "https://catalogs.example/redirect";

class UpdateReasons : public testing::Test
{
protected:
    test::ProgramResult update(const std::string& url, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments = {
            "--progress", "none",      "update", "--retries",         "0", "--url",
            url,          "--product", "P",      "--product-version", "1"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return program.run(arguments);
    }

    /// Expects that the update fails and prints this reason.
    void expectTold(const std::string& url, const std::vector<std::string>& options,
                    const std::string& reason) const
    {
        const test::ProgramResult result = update(url, options);
        EXPECT_EQ(1, result.status);
        EXPECT_THAT(result.err, HasSubstr(url));
        EXPECT_THAT(result.err, HasSubstr(reason));
    }

    /// Expects in addition that the log contains the reason and the address.
    void expectLogged(const std::string& url, const std::vector<std::string>& options,
                      const std::string& reason) const
    {
        program.run({"log", "clear"});
        expectTold(url, options, reason);
        std::string log;
        for (const QJsonValue entry : program.run({"--json", "log", "show"}).json()["entries"].toArray())
            log += entry.toObject()["message"].toString().toStdString() + "\n";
        const std::size_t start = log.find("Reason:  ");
        ASSERT_NE(std::string::npos, start) << log;
        const std::string line = log.substr(start, log.find('\n', start) - start);
        EXPECT_THAT(line, HasSubstr(reason));
        EXPECT_THAT(line, HasSubstr("(" + url + ")"));
    }

    test::Program program;
};

/// A TLS service without catalogs, with a certificate that no authority has signed.
class UpdateReasonsTls : public UpdateReasons
{
protected:
    UpdateReasonsTls() : tls(folder.path())
    {
        folder.write("redirect", "HTTP/1.1 302 Found\r\nLocation: /content?\r\nContent-Length: 0\r\n\r\n");
        folder.write("content?&library=Orv_Core_Content_Index.txt&product=P&version=1",
                     "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 1\r\n\r\n\n");
        folder.write("content?", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    }
    void SetUp() override
    {
        server.setProcessChannelMode(QProcess::MergedChannels);
        server.setWorkingDirectory(QString::fromStdString(folder.path()));
        server.start("openssl",
                     {"s_server", "-HTTP", "-accept", "127.0.0.1:0", "-cert",
                      QString::fromStdString(tls.certificate), "-key", QString::fromStdString(tls.key)});
        const QRegularExpression accepting("ACCEPT 127\\.0\\.0\\.1:(\\d+)");
        QString said;
        while (!accepting.match(said).hasMatch()) {
            ASSERT_TRUE(server.waitForReadyRead(10'000)) << said.toStdString();
            said += QString::fromUtf8(server.readAll());
        }
        url = "https://127.0.0.1:" + accepting.match(said).captured(1).toStdString() + "/redirect";
    }
    ~UpdateReasonsTls() override
    {
        server.kill();
        server.waitForFinished();
    }

    test::TempFolder folder;
    test::TlsCertificate tls;
    QProcess server;
    std::string url;
};

} // namespace

TEST_F(UpdateReasons, addressThatIsNoneIsNamed)
{
    expectLogged("catalogs.example/redirect", {}, "not a web address");
}

TEST_F(UpdateReasons, nameThatNobodyKnowsIsNamed)
{
    expectLogged("http://catalogs.invalid/redirect", {}, "Could not resolve host: catalogs.invalid");
}

TEST_F(UpdateReasons, serviceThatIsDownIsNamed)
{
    expectLogged("http://127.0.0.1:1/redirect", {}, "Failed to connect to 127.0.0.1 port 1");
}

TEST_F(UpdateReasons, proxyThatIsDownIsNamed)
{
    for (const char* const url : {kHttp, kHttps})
        expectLogged(url, {"--proxy", "http://127.0.0.1:1"}, "Failed to connect to 127.0.0.1 port 1");
}

TEST_F(UpdateReasons, proxyThatRefusesIsTold)
{
    test::FaultServer proxy;
    proxy.otherwise([](const test::FaultRequest&) { return FaultReply::status(403, "Not through here."); });
    expectTold(kHttp, {"--proxy", proxy.url("")}, "HTTP 403");
    expectLogged(kHttps, {"--proxy", proxy.url("")}, "CONNECT tunnel failed, response 403");
}

TEST_F(UpdateReasons, proxyThatAsksForAPasswordIsTold)
{
    test::FaultServer proxy;
    proxy.otherwise([](const test::FaultRequest& request) {
        return request.header("Proxy-Authorization").empty()
                   ? FaultReply::status(407, "", {"Proxy-Authenticate: Basic realm=\"office\""})
                   : FaultReply::status(503);
    });
    expectTold(kHttp, {"--proxy", proxy.url("")}, "HTTP 407");
    expectLogged(kHttps, {"--proxy", proxy.url("")}, "CONNECT tunnel failed, response 407");
    const std::string withPassword = "http://name:secret@" + proxy.url("").substr(7);
    expectTold(kHttp, {"--proxy", withPassword}, "HTTP 503");
    EXPECT_THAT(update(kHttp, {"--proxy", withPassword}).err, testing::Not(HasSubstr("secret")));
}

TEST_F(UpdateReasons, proxyThatAnswersWithAPageIsNoCatalogService)
{
    test::FaultServer proxy;
    proxy.otherwise([](const test::FaultRequest&) { return test::loginPage(); });
    expectTold(kHttp, {"--proxy", proxy.url("")}, "answers with web pages (a login page?)");
}

TEST_F(UpdateReasons, proxyOfTheEnvironmentCountsMoreThanTheSetting)
{
    EXPECT_EQ(0, program.run({"settings", "set", "proxy", "http://127.0.0.1:1"}).status);
    expectTold(kHttp, {}, "Failed to connect to 127.0.0.1 port 1");
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"import", kHttp},
          std::vector<std::string>{"manufacturers", "refresh", "--data-url", kHttp, "--logo-url", kHttp}})
        EXPECT_THAT(program.run(command).err, HasSubstr("Failed to connect to 127.0.0.1 port 1"));
    test::FaultServer proxy;
    proxy.otherwise([](const test::FaultRequest&) { return FaultReply::status(403, "Not through here."); });
    program.setEnvironment("http_proxy", proxy.url(""));
    expectTold(kHttp, {}, "HTTP 403");
    expectTold(kHttp, {"--proxy", "http://127.0.0.1:1"}, "Failed to connect to 127.0.0.1 port 1");
}

TEST_F(UpdateReasonsTls, certificateThatNobodyVouchesForIsTold)
{
    expectLogged(url, {}, "self-signed certificate");
}

TEST_F(UpdateReasonsTls, privateAuthorityIsTrustedWhereItIsNamed)
{
    const test::ProgramResult option = update(url, {"--cacert", tls.certificate});
    EXPECT_EQ(0, option.status) << option.err;
    EXPECT_EQ(1, update(url).status) << "for that run alone";
    EXPECT_EQ(0, program.run({"settings", "set", "certificates", tls.certificate}).status);
    EXPECT_EQ(0, update(url).status);
    EXPECT_EQ(0, program.run({"settings", "set", "certificates", tls.key}).status);
    EXPECT_EQ(1, update(url).status) << "that file names no authority";
    program.setEnvironment("SSL_CERT_FILE", tls.certificate);
    EXPECT_EQ(0, update(url).status) << "the environment counts more than the setting";
    EXPECT_EQ(0, program.run({"settings", "unset", "certificates"}).status);
    EXPECT_EQ(0, update(url).status);
    program.setEnvironment("SSL_CERT_FILE", "");
    expectLogged(url, {}, "self-signed certificate");
}
