#include <QProcess>
#include <QRegularExpression>

#include "tests/host/http/CurlFixture.h"
#include "tests/host/http/TlsCertificate.h"

using testing::HasSubstr;

namespace test {

namespace {

/// A server whose certificate nobody vouches for.
class CurlTlsTest : public CurlFixture
{
protected:
    void SetUp() override
    {
        const TlsCertificate tls(folder.path());
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

    QProcess process;
    std::string url;
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
}

} // namespace test
