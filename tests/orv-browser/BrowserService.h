#pragma once

#include <string>

#include <QProcess>
#include <QString>

namespace test {

/// Runs `orv-library serve` as a process on a free port of 127.0.0.1. It serves the content that `orv-library
/// sample` creates. The destructor ends the process.
class BrowserService
{
public:
    /// @param folder the folder for the content; it is created if it is missing
    explicit BrowserService(const std::string& folder);
    ~BrowserService();
    BrowserService(const BrowserService&) = delete;
    BrowserService& operator=(const BrowserService&) = delete;

    /// The folder "content" with the served files.
    const std::string& content() const { return mContent; }
    const std::string& manufacturerFolder() const { return mManufacturerFolder; }
    const QString& redirect() const { return mRedirect; }
    const QString& manufacturers() const { return mManufacturers; }
    const QString& logos() const { return mLogos; }

    /// Settings that use this service only for the manufacturers.
    std::string manufacturerSettings() const;

    /// Ends the process. From then on connections are refused.
    void stop();

    /// Runs `orv-library` until it ends. Fails the test if the status is not 0.
    static void runProgram(const QStringList& arguments);

private:
    QProcess mProcess;
    std::string mContent;
    std::string mManufacturerFolder;
    QString mRedirect;
    QString mManufacturers;
    QString mLogos;
};

} // namespace test
