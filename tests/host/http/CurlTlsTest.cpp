#include <atomic>
#include <csignal>

#include <QProcess>
#include <QRegularExpression>

#include "tests/host/http/CurlFixture.h"
#include "tests/host/http/Http2Front.h"
#include "tests/host/http/TlsCertificate.h"
#include "tests/support/ScopedEnvironment.h"

using testing::HasSubstr;

namespace test {

namespace {

/// A server with a certificate that no authority has signed.
class CurlTlsTest : public CurlFixture
{
protected:
    void SetUp() override
    {
        const TlsCertificate tls(folder.path());
        certificate = tls.certificate;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("openssl",
                      {"s_server", "-www", "-accept", "127.0.0.1:0", "-cert",
                       QString::fromStdString(tls.certificate), "-key", QString::fromStdString(tls.key)});
        const QRegularExpression accepting("ACCEPT 127\\.0\\.0\\.1:(\\d+)");
        QString said;
        while (!accepting.match(said).hasMatch()) {
            ASSERT_TRUE(process.waitForReadyRead(10'000)) << said.toStdString();
            said += QString::fromUtf8(process.readAll());
        }
        url = "https://127.0.0.1:" + accepting.match(said).captured(1).toStdString() + "/";
    }
    void TearDown() override
    {
        process.kill();
        process.waitForFinished();
    }

    /// A folder that contains the certificate under the name of its hash.
    std::string hashedFolder() const
    {
        folder.write("authorities/a.pem", readFile(certificate));
        const std::string path = folder.file("authorities").toNativeString();
        EXPECT_EQ(QProcess::execute("openssl", {"rehash", QString::fromStdString(path)}), 0);
        return path;
    }

    QProcess process;
    std::string url;
    std::string certificate;
};

/// Counts the signals SIGPIPE of the process until the destructor.
class BrokenPipes
{
public:
    BrokenPipes() : mFormer(std::signal(SIGPIPE, [](int) { ++count; })) { count = 0; }
    ~BrokenPipes() { std::signal(SIGPIPE, mFormer); }
    BrokenPipes(const BrokenPipes&) = delete;
    BrokenPipes& operator=(const BrokenPipes&) = delete;

    inline static std::atomic<int> count{0};

private:
    void (*mFormer)(int);
};

} // namespace

TEST_F(CurlTlsTest, serverThatNobodyVouchesForIsRefused)
{
    EXPECT_FALSE(fetch(url));
    EXPECT_THAT(reason, HasSubstr("self-signed certificate"));
    EXPECT_EQ(errorNumber, 60);
    EXPECT_FALSE(target().pathExists());
    EXPECT_FALSE(header(url));
    EXPECT_FALSE(browse(url));
    server.on("/a", FaultReply::redirect(url));
    EXPECT_EQ(curl.urlAfterRedirects(server.url("/a")), "");
    EXPECT_THAT(curl.lastAnswer().reason, HasSubstr("self-signed certificate"));
}

TEST_F(CurlTlsTest, certificatesOfTheHostAreTrusted)
{
    curl.setCertificates(certificate);
    EXPECT_TRUE(fetch(url)) << reason;
    curl.setCertificates(folder.path());
    EXPECT_FALSE(fetch(url)) << "a folder whose names are no hashes vouches for nothing";
    curl.setCertificates(hashedFolder());
    EXPECT_TRUE(fetch(url)) << reason;
    curl.setCertificates(folder.file("missing.pem").toNativeString());
    EXPECT_FALSE(fetch(url));
    EXPECT_THAT(reason, HasSubstr("missing.pem"));
    Curl::setCertificates(certificate);
    EXPECT_TRUE(Curl::get().browseURL(url, {}, body, true, 0)) << Curl::get().lastAnswer().reason;
    Curl::setCertificates({});
    EXPECT_FALSE(Curl::get().browseURL(url, {}, body, true, 0));
    EXPECT_EQ(body, "") << "nothing is left of the former page";
}

TEST_F(CurlTlsTest, certificatesOfTheEnvironmentAreTrusted)
{
    {
        const ScopedEnvironment file("SSL_CERT_FILE", certificate.c_str());
        EXPECT_TRUE(fetch(url)) << reason;
    }
    EXPECT_FALSE(fetch(url));
    const ScopedEnvironment path("SSL_CERT_DIR", hashedFolder().c_str());
    EXPECT_TRUE(fetch(url)) << reason;
}

TEST_F(CurlTlsTest, furtherConnectionsResumeTheSession)
{
    curl.setCertificates(certificate);
    ASSERT_TRUE(browse(url)) << curl.lastAnswer().reason;
    EXPECT_THAT(body, HasSubstr("New, TLS"));
    // The server closes each connection after its answer.
    ASSERT_TRUE(browse(url)) << curl.lastAnswer().reason;
    EXPECT_THAT(body, HasSubstr("Reused, TLS"));
    curl.setCertificates(folder.file("missing.pem").toNativeString());
    EXPECT_FALSE(browse(url)) << "a session counts only with the certificates that vouched for it";
}

TEST_F(CurlTlsTest, serverThatIsGoneRaisesNoSignal)
{
    if (!Http2Front::isAvailable())
        GTEST_SKIP() << "no server that keeps its connections";
    const BrokenPipes pipes;
    Http2Front front(server.port());
    curl.setCertificates(front.certificate());
    server.on("/a", FaultReply::ok("a"));
    // The server closes the connection while the request is sent, because the line is too long for it.
    EXPECT_FALSE(fetch(front.url("/a"), {"X-Long: " + std::string(1'000'000, 'x')}));
    EXPECT_TRUE(fetch(front.url("/a"))) << reason;
    front.stop();
    EXPECT_FALSE(fetch(front.url("/a")));
    EXPECT_EQ(BrokenPipes::count, 0);
}

} // namespace test
