// The advice is reached through the doctor's look at the certificate.
#include <gmock/gmock.h>

#include "tests/orv-host/DoctorFixture.h"

using testing::StartsWith;

namespace {

class CertificateAdvice : public test::DoctorFixture
{
protected:
    std::string adviceOn(const std::string& reason)
    {
        use("https");
        service.certificateAnswer = {0, "", reason, ""};
        return step("certificate").advice;
    }
};

} // namespace

TEST_F(CertificateAdvice, eachReasonHasItsOwn)
{
    const std::pair<const char*, const char*> table[] = {
        {"the certificate's subject name does not match the target", "The certificate is another server's."},
        {"certificate is not yet valid", "Look at this machine's clock: it may be slow."},
        {"certificate has expired", "Look at this machine's clock: it may be fast."},
        {"error setting certificate verify locations",
         "Name a PEM file, or a folder of hashed certificates,"},
        {"self-signed certificate in certificate chain", "Name a company's own authority with --cacert"},
        {"certificate", "Name a company's own authority with --cacert"},
    };
    for (const auto& [reason, advice] : table)
        EXPECT_THAT(adviceOn(reason), StartsWith(advice)) << reason;
}

TEST_F(CertificateAdvice, otherReasonsHaveNone)
{
    for (const char* const reason : {"the lengths do not match", "the session has expired", "no route", ""})
        EXPECT_THAT(adviceOn(reason), StartsWith("The service may be down, or speak no https here;"))
            << reason;
}
