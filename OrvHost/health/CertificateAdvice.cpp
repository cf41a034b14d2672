#include "OrvHost/health/CertificateAdvice.h"

namespace OrvHost {

namespace {

struct Advice
{
    const char* mark; ///< stands in the reason
    const char* text;
};

/// The first one that fits counts.
constexpr Advice kAdvices[] = {
    {"match", "The certificate is another server's. Correct the host name in the address; where the "
              "network has a login page, log in with a web browser; otherwise tell the publisher of the "
              "service."},
    {"not yet valid",
     "Look at this machine's clock: it may be slow. Where it is right, tell the publisher of "
     "the service."},
    {"expired",
     "Look at this machine's clock: it may be fast. Where it is right, the publisher of the service "
     "has to renew the certificate."},
    {"error setting certificate", "Name a PEM file, or a folder of hashed certificates, with --cacert or the "
                                  "setting 'certificates'."},
    {"certificate", "Name a company's own authority with --cacert or the setting 'certificates'. At home, do "
                    "not trust this network: somebody may be reading along."},
};

} // namespace

std::string CertificateAdvice::of(const std::string& reason)
{
    for (const Advice& advice : kAdvices) {
        const bool isOfCertificate = reason.find("certificate") != std::string::npos;
        if (isOfCertificate && reason.find(advice.mark) != std::string::npos)
            return advice.text;
    }
    return {};
}

} // namespace OrvHost
