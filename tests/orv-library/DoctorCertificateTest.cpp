// `doctor` when the service's certificate is refused: it reports the fault and advice for exactly this fault.
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int kTimeoutMilliseconds = 30000;

/// The content of a self-signed certificate.
struct Certificate
{
    std::string name = "IP:127.0.0.1";
    int firstDay = -1; ///< days from now
    int lastDay = 1;
};

class DoctorCertificate : public testing::Test
{
protected:
    ~DoctorCertificate() override
    {
        server.kill();
        server.waitForFinished();
    }

    /// Starts a TLS service with this certificate.
    void serve(const Certificate& certificate)
    {
        make(certificate);
        server.setProcessChannelMode(QProcess::MergedChannels);
        server.start("openssl", {"s_server", "-www", "-accept", "127.0.0.1:0", "-cert", file("c.pem"), "-key",
                                 file("k.pem")});
        const QRegularExpression accepting("ACCEPT 127\\.0\\.0\\.1:(\\d+)");
        QString said;
        while (!accepting.match(said).hasMatch()) {
            ASSERT_TRUE(server.waitForReadyRead(kTimeoutMilliseconds)) << said.toStdString();
            said += QString::fromUtf8(server.readAll());
        }
        url = "https://127.0.0.1:" + accepting.match(said).captured(1).toStdString() + "/redirect";
    }

    /// The doctor's result for the certificate: whether it is good, the text, and the advice.
    struct Finding
    {
        bool ok;
        std::string text;
        std::string advice;
    };
    Finding examine(bool isTrusted)
    {
        program.createRoot();
        std::vector<std::string> arguments{"--json", "doctor", "--url", url};
        if (isTrusted)
            arguments.insert(arguments.end(), {"--cacert", file("c.pem").toStdString()});
        const QJsonObject step = program.run(arguments).json()["steps"].toArray()[7].toObject();
        EXPECT_EQ("certificate", step["step"].toString());
        return {step["ok"].toBool(), step["text"].toString().toStdString(),
                step["advice"].toString().toStdString()};
    }

    QString file(const std::string& name) const { return QString::fromStdString(folder.path() + "/" + name); }

    const test::TempFolder folder;
    test::Program program;
    QProcess server;
    std::string url;

private:
    static QString timeText(int days)
    {
        return QDateTime::currentDateTimeUtc().addDays(days).toString("yyyyMMddHHmmss'Z'");
    }

    /// "openssl req" cannot set the start date of a certificate, so "openssl ca" signs it.
    void make(const Certificate& certificate) const
    {
        folder.write("index.txt", "");
        folder.write("ca.conf",
                     "[ca]\ndefault_ca=a\n[a]\ndatabase=index.txt\nrand_serial=yes\nnew_certs_dir=.\n"
                     "default_md=sha256\npolicy=p\nx509_extensions=e\n[p]\ncommonName=supplied\n"
                     "[e]\nbasicConstraints=CA:true\nsubjectAltName=" +
                         certificate.name + "\n");
        run({"req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-subj",
             "/CN=service", "-keyout", "k.pem", "-out", "r.pem"});
        run({"ca", "-batch", "-selfsign", "-config", "ca.conf", "-in", "r.pem", "-keyfile", "k.pem",
             "-startdate", timeText(certificate.firstDay), "-enddate", timeText(certificate.lastDay), "-out",
             "c.pem"});
    }

    void run(const QStringList& arguments) const
    {
        QProcess openssl;
        openssl.setWorkingDirectory(QString::fromStdString(folder.path()));
        openssl.start("openssl", arguments);
        ASSERT_TRUE(openssl.waitForFinished(kTimeoutMilliseconds));
        ASSERT_EQ(0, openssl.exitCode()) << openssl.readAllStandardError().toStdString();
    }
};

} // namespace

TEST_F(DoctorCertificate, certificateOfAnotherServerIsAMatterOfTheAddress)
{
    serve({"DNS:other.example"});
    const Finding finding = examine(true);
    EXPECT_FALSE(finding.ok);
    EXPECT_THAT(finding.text, HasSubstr("target host name '127.0.0.1'"));
    EXPECT_THAT(finding.advice, HasSubstr("Correct the host name in the address"));
    EXPECT_THAT(finding.advice, Not(HasSubstr("clock")));
    EXPECT_THAT(finding.advice, Not(HasSubstr("--cacert")));
}

TEST_F(DoctorCertificate, expiredCertificateIsAMatterOfTheClockOrThePublisher)
{
    serve({"IP:127.0.0.1", -10, -5});
    const Finding finding = examine(true);
    EXPECT_THAT(finding.text, HasSubstr("expired"));
    EXPECT_THAT(finding.advice, HasSubstr("clock: it may be fast"));
    EXPECT_THAT(finding.advice, Not(HasSubstr("--cacert")));
}

TEST_F(DoctorCertificate, futureCertificateIsAMatterOfTheClock)
{
    serve({"IP:127.0.0.1", 5, 10});
    const Finding finding = examine(true);
    EXPECT_THAT(finding.text, HasSubstr("not yet valid"));
    EXPECT_THAT(finding.advice, HasSubstr("clock: it may be slow"));
}

TEST_F(DoctorCertificate, unknownAuthorityIsAMatterOfTheAuthorities)
{
    serve({});
    const Finding finding = examine(false);
    EXPECT_THAT(finding.text, HasSubstr("self-signed certificate"));
    EXPECT_THAT(finding.advice, HasSubstr("--cacert"));
    EXPECT_THAT(finding.advice, Not(HasSubstr("clock")));
}

TEST_F(DoctorCertificate, serviceWithoutTlsIsNoMatterOfCertificates)
{
    const std::string content = folder.path() + "/content";
    ASSERT_EQ(0, program.runBare({"sample", content}).status);
    const auto plain = program.start({"serve", content});
    const QByteArray said = QByteArray::fromStdString(test::Program::readLine(*plain));
    url = QJsonDocument::fromJson(said)["redirect"].toString().replace("http:", "https:").toStdString();
    const Finding finding = examine(false);
    EXPECT_FALSE(finding.ok);
    EXPECT_THAT(finding.advice, HasSubstr("speak no https"));
    plain->terminate();
    test::Program::finish(*plain);
}
