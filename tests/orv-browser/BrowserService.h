#pragma once

#include <string>

#include <QProcess>
#include <QString>

namespace test {

/// The real service, `orv-library serve`, as a process of its own over the content that `orv-library sample`
/// wrote; on a free port of the loopback interface, ended with the object.
class BrowserService
{
public:
    /// @param folder for the content; made when missing
    explicit BrowserService(const std::string& folder);
    ~BrowserService();
    BrowserService(const BrowserService&) = delete;
    BrowserService& operator=(const BrowserService&) = delete;

    /// "content" below the folder: the files that are served.
    const std::string& content() const { return mContent; }
    const std::string& manufacturerFolder() const { return mManufacturerFolder; }
    const QString& redirect() const { return mRedirect; }
    const QString& manufacturers() const { return mManufacturers; }
    const QString& logos() const { return mLogos; }

    /// Settings that name this service for the manufacturers alone.
    std::string manufacturerSettings() const;

    /// Ends the process: from now on nobody answers.
    void stop();

    /// Runs `orv-library` to its end; fails the test when its status is not 0.
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
