#pragma once

#include <stdexcept>
#include <string>

#include <QProcess>

namespace test {

/// A self-signed certificate for 127.0.0.1 and its key, as two files.
struct TlsCertificate
{
    /// Creates both files in a folder.
    explicit TlsCertificate(const std::string& folder)
        : certificate(folder + "/certificate.pem"), key(folder + "/key.pem")
    {
        const QStringList request{"req",
                                  "-x509",
                                  "-newkey",
                                  "ec",
                                  "-pkeyopt",
                                  "ec_paramgen_curve:prime256v1",
                                  "-nodes",
                                  "-days",
                                  "2",
                                  "-subj",
                                  "/CN=127.0.0.1",
                                  "-addext",
                                  "subjectAltName=IP:127.0.0.1",
                                  "-keyout",
                                  QString::fromStdString(key),
                                  "-out",
                                  QString::fromStdString(certificate)};
        QProcess process;
        process.start("openssl", request);
        if (!process.waitForFinished() || process.exitCode() != 0)
            throw std::runtime_error("no certificate: " + process.readAllStandardError().toStdString());
    }

    const std::string certificate;
    const std::string key;
};

} // namespace test
